#pragma once

/// Who may look at this process.
namespace nProcessAccess {

/// Replaces the process's access list with one entry that lets everyone query it (whether it runs, its exit code and
/// times), so that tools of unprivileged users can watch the service. A failure leaves the list as it is and is not
/// reported: the service works all the same.
void grantQueryToEveryone() noexcept;

}  // namespace nProcessAccess

#pragma once

/// Who may access this process.
namespace nProcessAccess {

/// Replaces the process's access list with one entry that lets everyone query it (whether it runs, its exit code and
/// times), so that tools of unprivileged users can watch the service. A failure leaves the list unchanged and is not
/// reported: the service works without it.
void grantQueryToEveryone();

}  // namespace nProcessAccess

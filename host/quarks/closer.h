#pragma once

/// The deleter for every owner of a system handle. An owner is a type alias such as
/// std::unique_ptr<std::FILE, tCloser<std::fclose>>. `Close` is called once, never with null; its result is ignored.
template <auto Close>
struct tCloser {
    template <class Handle>
    void operator()(Handle* handle) const noexcept {
        Close(handle);
    }
};

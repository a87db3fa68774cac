use std::panic::catch_unwind;

mod rhythm;

#[no_mangle]
pub extern "C" fn BeatInitialize() -> i32 {
    catch_unwind(rhythm::start).unwrap_or(-1)
}

#[no_mangle]
pub extern "C" fn BeatStop() {}

#[no_mangle]
pub extern "C" fn BeatCleanup() {}

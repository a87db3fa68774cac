//! Example of a plug-in in Rust: it maintains a file that says when the service last wrote its status, and that the
//! service is alive, for a monitor that can only look at files.
//!
//! C:\ProgramData\Corvell\zuZiptraRemoteService.heartbeat contains one line, `status=SECONDS alive=SECONDS`: both times
//! in seconds since 1970 (UTC), the first one 0 if there is no status file. The file is removed when the service stops.
use std::ffi::{c_void, OsString};
use std::fs;
use std::io::{Error, Result};
use std::os::windows::ffi::OsStringExt;
use std::panic::catch_unwind;
use std::path::{Path, PathBuf};
use std::ptr::null_mut;
use std::slice::from_raw_parts;
use std::sync::mpsc::{channel, Receiver, RecvTimeoutError, Sender};
use std::sync::Mutex;
use std::thread::{Builder, JoinHandle};
use std::time::{Duration, SystemTime, UNIX_EPOCH};

const PAUSE: Duration = Duration::from_secs(1);

const STARTED: i32 = 0;
/// A warning: the plug-in has started, but the first beat could not be written.
const CANNOT_WRITE_YET: i32 = 1;
const CANNOT_START: i32 = -1;
const PANICKED: i32 = -2;

#[repr(C)]
struct Guid(u32, u16, u16, [u8; 8]);
const PROGRAM_DATA: Guid = Guid(0x62AB5D82, 0xFDC1, 0x4DC3, [0xA9, 0xDD, 0x07, 0x0D, 0x1D, 0x49, 0x5D, 0x97]);

#[link(name = "shell32")]
extern "system" {
    fn SHGetKnownFolderPath(folder: &Guid, flags: u32, token: *mut c_void, path: &mut *mut u16) -> i32;
}
#[link(name = "ole32")]
extern "system" {
    fn CoTaskMemFree(memory: *mut u16);
}

/// The folder that contains the status file's. The service itself asks Windows for it, too, so no environment variable
/// can make the two differ.
fn program_data() -> Result<PathBuf> {
    let mut text = null_mut();
    // SAFETY: on success, `text` is a string that ends with a zero; it is ours to free in either case.
    unsafe {
        let result = SHGetKnownFolderPath(&PROGRAM_DATA, 0, null_mut(), &mut text);
        let folder = (result >= 0).then(|| {
            let length = (0..).take_while(|&at| *text.add(at) != 0).count();
            PathBuf::from(OsString::from_wide(from_raw_parts(text, length)))
        });
        CoTaskMemFree(text);
        folder.ok_or_else(|| Error::from_raw_os_error(result))
    }
}

struct Running {
    /// The thread works as long as this exists.
    stop: Option<Sender<()>>,
    thread: JoinHandle<()>,
}

static RUNNING: Mutex<Option<Running>> = Mutex::new(None);

fn seconds(time: SystemTime) -> u64 {
    time.duration_since(UNIX_EPOCH).map_or(0, |since| since.as_secs())
}

/// Readers see the old content or the new one, never a part: the file is replaced by a rename.
fn beat(status: &Path, heartbeat: &Path) -> Result<()> {
    let written = fs::metadata(status).and_then(|file| file.modified()).map_or(0, seconds);
    let next = heartbeat.with_extension("heartbeat.tmp");
    fs::write(&next, format!("status={} alive={}\n", written, seconds(SystemTime::now())))?;
    fs::rename(&next, heartbeat)
}

fn work(status: PathBuf, heartbeat: PathBuf, stop: Receiver<()>) {
    // Unlike a sleep, this ends at once when the sender is dropped.
    while stop.recv_timeout(PAUSE) == Err(RecvTimeoutError::Timeout) {
        // A reader may have the file open just now. The next beat tries again.
        let _ = beat(&status, &heartbeat);
    }
    let _ = fs::remove_file(&heartbeat);
}

fn start() -> Result<i32> {
    let status = program_data()?.join("Corvell").join("zuZiptraRemoteService.status");
    let heartbeat = status.with_extension("heartbeat");
    let result = beat(&status, &heartbeat).map_or(CANNOT_WRITE_YET, |()| STARTED);
    let (stop, stopped) = channel();
    let thread = Builder::new().spawn(move || work(status, heartbeat, stopped))?;
    *RUNNING.lock().unwrap() = Some(Running { stop: Some(stop), thread });
    Ok(result)
}

// No panic may leave the three functions: it would end the service with all its plug-ins.

#[no_mangle]
pub extern "C" fn BeaconInitialize() -> i32 {
    catch_unwind(|| start().unwrap_or(CANNOT_START)).unwrap_or(PANICKED)
}

/// Only requests the stop: other plug-ins are waiting for their own Stop.
#[no_mangle]
pub extern "C" fn BeaconStop() {
    let _ = catch_unwind(|| RUNNING.lock().unwrap().as_mut().map(|running| running.stop.take()));
}

/// Waits for the thread, because the library is unloaded next, including the code that the thread runs.
#[no_mangle]
pub extern "C" fn BeaconCleanup() {
    let _ = catch_unwind(|| RUNNING.lock().unwrap().take().map(|running| running.thread.join()));
}

pub fn start() -> i32 {
    0
}

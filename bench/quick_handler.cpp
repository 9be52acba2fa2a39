// A crash handler that exits at once: crash_bench times the library's own
// share of a crash with it, from the fault to the end of the process.
int main() { return 0; }

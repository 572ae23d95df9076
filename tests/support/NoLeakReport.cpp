/// Keeps the leak sanitizer from reporting what is left behind. Linked by test programs that make allocations
/// fail in Xerces: Xerces leaves blocks behind then. The tests count them instead.
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() { return 1; }

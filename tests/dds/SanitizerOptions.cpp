// The thread sanitizer does not see how the DDS library orders its accesses to memory, which are not compiled with it;
// it sees the calls to memcpy(), free() and recvmsg() in between, and takes them for races. So such calls count for
// nothing here, whoever makes them. What our own code reads and writes, and every lock and thread, counts as ever. To
// suppress what is called from the library would lose its locks, and find races where there are none.
extern "C" const char* __tsan_default_options()
{
    return "ignore_interceptors_accesses=1";
}

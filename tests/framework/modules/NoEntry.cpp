// A library under a module's name that is none.
extern "C" [[gnu::visibility("default")]] int somethingElse()
{
    return 0;
}

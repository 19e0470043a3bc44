// Tells what the library builds when it comes and destroys when it goes, one line each, as it happens.
//   ObservedLibrary            the library is linked
//   ObservedLibrary LIBRARY    the library is opened and closed
// How it sees that: the loader looks for every name in the program first, so the operations below are called in place
// of those that they pass on to. Each static object with a destructor announces itself right after it was built.
#include "ostrel/AttachmentBag.h"
#include "ostrel/DirectSensorProc.h"
#include "ostrel/Observer.h"

#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <dlfcn.h>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

// Without a buffer: the first lines come before anything of this program is built, the last when all of it is gone.
void say(const std::string& what, const std::string& name)
{
    dprintf(STDOUT_FILENO, "%s %s\n", what.c_str(), name.c_str());
}

std::string nameOf(const void* object)
{
    Dl_info info;
    if (dladdr(object, &info) == 0 || !info.dli_sname || info.dli_saddr != object)
        return "an object without a name";
    char* const name = abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, nullptr);
    std::string result = name ? name : info.dli_sname;
    std::free(name);
    return result;
}

bool isOfLibrary(const void* address)
{
    Dl_info info;
    return dladdr(address, &info) != 0 &&
           std::string(info.dli_fname).find("/libostrelSensorManager.so") != std::string::npos;
}

template <class Function>
Function* original(const char* symbol)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

struct Destruction {
    void (*_destroy)(void*);
    void* _object;
};

void destroy(void* destruction)
{
    const auto [run, object] = *static_cast<Destruction*>(destruction);
    delete static_cast<Destruction*>(destruction);
    say("destroyed", nameOf(object));
    run(object);
}

} // namespace

extern "C" int __cxa_atexit(void (*run)(void*), void* object, void* library) noexcept
{
    const auto pass = original<int(void (*)(void*), void*, void*)>("__cxa_atexit");
    if (!isOfLibrary(library))
        return pass(run, object, library);
    say("built", nameOf(object));
    return pass(&destroy, std::make_unique<Destruction>(Destruction{run, object}).release(), library);
}

int Ostrel::AttachmentBag::createUniqueID()
{
    say("called", "Ostrel::AttachmentBag::createUniqueID()");
    return original<int()>("_ZN6Ostrel13AttachmentBag14createUniqueIDEv")();
}

void Ostrel::Subject::attach(Observer& observer)
{
    const bool registers = this == &DirectSensorProc::registerSubject();
    const bool unregisters = this == &DirectSensorProc::unregisterSubject();
    say(registers     ? "registerSubject()"
        : unregisters ? "unregisterSubject()"
                      : "a subject",
        "got " + nameOf(&observer));
    original<void(Subject*, Observer&)>("_ZN6Ostrel7Subject6attachERNS_8ObserverE")(this, observer);
}

int main(int argc, char** argv)
{
    void* const library = dlopen(argc > 1 ? argv[1] : nullptr, RTLD_NOW | RTLD_LOCAL);
    const auto init =
        library ? reinterpret_cast<bool (*)()>(dlsym(library, "_ZN6Ostrel17initSensorManagerEv")) : nullptr;
    if (!init || !init()) {
        std::fprintf(stderr, "no library: %s\n", dlerror());
        return EXIT_FAILURE;
    }
    say("loaded", "");
    dlclose(library);
    // Nothing may be left for the program's own end to destroy.
    if (argc > 1)
        _exit(EXIT_SUCCESS);
    return EXIT_SUCCESS;
}

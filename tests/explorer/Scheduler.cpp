#include "Scheduler.h"
#include "base/Sanitizers.h"

#include <algorithm>
#include <boost/context/pooled_fixedsize_stack.hpp>
#include <cstdio>
#if defined(OSTREL_ADDRESS_SANITIZER)
#include <sanitizer/common_interface_defs.h>
#else
// What the address sanitizer has to be told when a program changes its stack.
static void __sanitizer_start_switch_fiber(void**, const void*, std::size_t) {}
static void __sanitizer_finish_switch_fiber(void*, const void**, std::size_t*) {}
#endif

namespace Explorer {

namespace {

namespace context = boost::context;

constexpr unsigned tooManySteps = 20'000;
constexpr int maxChanges = 9;
Scheduler* current = nullptr;

context::pooled_fixedsize_stack& stacks()
{
    static context::pooled_fixedsize_stack pool(256 * 1024);
    return pool;
}

} // namespace

struct Scheduler::Fibre {
    int _number = 0;
    int _priority = 0;
    std::function<void()> _body;
    context::fiber _context; // where it goes on
    const void* _sleepsOn = nullptr;
    bool _ended = false;
    unsigned _heldRanks = 0;
    const void* _stack = nullptr;
    std::size_t _stackSize = 0;
    void* _fakeStack = nullptr;
};

Scheduler::Scheduler(std::uint64_t seed, unsigned length, bool tracing) : _random(seed), _tracing(tracing)
{
    _changes.resize(length == 0 ? 0 : seed % (maxChanges + 1));
    for (unsigned& change : _changes)
        change = static_cast<unsigned>(_random() % length);
    std::sort(_changes.rbegin(), _changes.rend());
    current = this;
}

Scheduler::~Scheduler()
{
    current = nullptr;
}

void Scheduler::spawn(std::function<void()> body)
{
    auto fibre = std::make_unique<Fibre>();
    fibre->_number = static_cast<int>(_fibres.size()) + 1;
    fibre->_body = std::move(body);
    const context::stack_context stack = stacks().allocate();
    fibre->_stack = static_cast<const char*>(stack.sp) - stack.size;
    fibre->_stackSize = stack.size;
    fibre->_context =
        context::fiber(std::allocator_arg, context::preallocated(stack.sp, stack.size, stack), stacks(),
                       [this, fibre = fibre.get()](context::fiber&& back) { return enter(*fibre, std::move(back)); });
    _fibres.push_back(std::move(fibre));
}

void Scheduler::run()
{
    std::vector<int> priorities(_fibres.size());
    for (std::size_t i = 0; i < priorities.size(); ++i)
        priorities[i] = static_cast<int>(i) + 1;
    std::shuffle(priorities.begin(), priorities.end(), _random);
    for (std::size_t i = 0; i < priorities.size(); ++i)
        _fibres[i]->_priority = priorities[i];
    while (Fibre* const next = choose())
        switchTo(*next);
    if (!std::all_of(_fibres.begin(), _fibres.end(), [](const auto& fibre) { return fibre->_ended; }))
        failHanging();
}

Scheduler::Fibre* Scheduler::choose()
{
    Fibre* chosen = nullptr;
    for (const auto& fibre : _fibres)
        if (!fibre->_ended && !fibre->_sleepsOn && (!chosen || fibre->_priority > chosen->_priority))
            chosen = fibre.get();
    return chosen;
}

void Scheduler::switchTo(Fibre& fibre)
{
    _running = &fibre;
    __sanitizer_start_switch_fiber(&_mainFakeStack, fibre._stack, fibre._stackSize);
    fibre._context = std::move(fibre._context).resume();
    __sanitizer_finish_switch_fiber(_mainFakeStack, nullptr, nullptr);
    _running = nullptr;
}

/// Back to run(), which chooses who is next.
void Scheduler::leave(bool forGood)
{
    Fibre& fibre = *_running;
    __sanitizer_start_switch_fiber(forGood ? nullptr : &fibre._fakeStack, _mainStack, _mainStackSize);
    if (forGood)
        return;
    _main = std::move(_main).resume();
    __sanitizer_finish_switch_fiber(fibre._fakeStack, nullptr, nullptr);
}

context::fiber Scheduler::enter(Fibre& fibre, context::fiber&& back)
{
    __sanitizer_finish_switch_fiber(nullptr, &_mainStack, &_mainStackSize);
    _main = std::move(back);
    try {
        fibre._body();
    } catch (const context::detail::forced_unwind&) {
        throw;
    } catch (...) {
        fail("an exception left a thread");
    }
    fibre._ended = true;
    leave(true);
    return std::move(_main);
}

void Scheduler::step(const char* what, const void* object)
{
    Scheduler* const self = current;
    if (!self || !self->_running)
        return;
    Fibre& fibre = *self->_running;
    if (self->_tracing)
        std::printf("%5u thread %d: %s %p\n", self->_steps, fibre._number, what, object);
    if (++self->_steps > tooManySteps)
        fail("the run does not end");
    for (; !self->_changes.empty() && self->_changes.back() < self->_steps; self->_changes.pop_back())
        fibre._priority = --self->_lowest;
    Fibre* const next = self->choose();
    self->_fingerprint = (self->_fingerprint ^ static_cast<unsigned>(next->_number)) * 0x100000001b3;
    if (next != &fibre)
        self->leave();
}

void Scheduler::sleepOn(const void* object)
{
    if (self() == 0)
        fail("a wait for what is not there, after all threads have ended");
    current->_running->_sleepsOn = object;
    current->leave();
}

std::vector<Scheduler::Fibre*> Scheduler::sleepersOn(const void* object) const
{
    std::vector<Fibre*> result;
    for (const auto& fibre : _fibres)
        if (fibre->_sleepsOn == object)
            result.push_back(fibre.get());
    return result;
}

void Scheduler::wakeOne(const void* object)
{
    if (!current)
        return;
    if (const auto sleepers = current->sleepersOn(object); !sleepers.empty())
        sleepers[current->_random() % sleepers.size()]->_sleepsOn = nullptr;
}

bool Scheduler::anybodySleepsOn(const void* object)
{
    return current && !current->sleepersOn(object).empty();
}

int Scheduler::self()
{
    return current && current->_running ? current->_running->_number : 0;
}

unsigned& Scheduler::heldRanks()
{
    static unsigned outside = 0;
    return self() == 0 ? outside : current->_running->_heldRanks;
}

void Scheduler::failHanging() const
{
    std::string who;
    for (const auto& fibre : _fibres)
        if (!fibre->_ended)
            who += " " + std::to_string(fibre->_number);
    fail("nobody can go on; these threads wait for ever:" + who);
}

} // namespace Explorer

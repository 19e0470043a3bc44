#include "ostrel/Subject.h"

#include "tests/ostrel/Recorder.h"
#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>

using Ostrel::Subject;

namespace {

using Times = std::vector<double>;

void attach(Subject& subject, std::initializer_list<Recorder*> recorders)
{
    for (Recorder* recorder : recorders)
        subject.attach(*recorder);
}

TEST(Subject, CallsEachObserverOnceInOrder)
{
    std::string order;
    Recorder a([&order](auto*) { order += 'a'; });
    Recorder b([&order](auto*) { order += 'b'; });
    Subject subject;
    attach(subject, {&b, &a, &b});
    subject.notify(1.0);
    subject.detach(b);
    subject.detach(b);
    subject.notify(2.0);
    EXPECT_EQ(order, "baa");
}

TEST(Subject, EitherSideMayEndFirst)
{
    Recorder stays;
    auto subject = std::make_unique<Subject>();
    {
        Recorder goes;
        attach(*subject, {&goes, &stays});
    }
    subject->notify(1.0);
    subject.reset();
    Subject other;
    other.attach(stays);
    other.notify(2.0);
    EXPECT_EQ(stays._times, (Times{1.0, 2.0}));
}

TEST(Subject, SkipsWhatIsDetachedOrDestroyedMeanwhile)
{
    Subject subject;
    auto destroyed = std::make_unique<Recorder>();
    Recorder detached, last;
    auto* const first = new Recorder;
    first->_action = [&](auto*) {
        subject.detach(detached);
        destroyed.reset();
        delete first; // itself
    };
    attach(subject, {first, destroyed.get(), &detached, &last});
    subject.notify(1.0);
    subject.notify(2.0);
    EXPECT_EQ(detached.count(), 0U);
    EXPECT_EQ(last._times, (Times{1.0, 2.0}));
}

TEST(Subject, NestedNotificationReachesWhatTheOuterOneDoesNot)
{
    Subject subject;
    Recorder newcomer, victim, first;
    first._action = [&](auto*) {
        first._action = {};
        subject.attach(newcomer);
        subject.notify(2.0);
        subject.detach(victim);
    };
    attach(subject, {&first, &victim});
    subject.notify(1.0);
    EXPECT_EQ(first._times, (Times{1.0, 2.0}));
    EXPECT_EQ(newcomer._times, Times{2.0});
    EXPECT_EQ(victim._times, Times{2.0});
}

TEST(Subject, StaysUsableAfterAnException)
{
    Subject subject;
    Recorder last;
    auto goes = std::make_unique<Recorder>();
    Recorder throws([&](auto*) {
        goes.reset();
        throw std::runtime_error("no");
    });
    attach(subject, {goes.get(), &throws, &last});
    EXPECT_THROW(subject.notify(1.0), std::runtime_error);
    throws._action = {};
    subject.notify(2.0);
    EXPECT_EQ(last._times, Times{2.0});
}

} // namespace

#include "ostrel/Subject.h"

#include "tests/ostrel/Recorder.h"
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>

using Ostrel::Subject;

namespace {

TEST(Subject, CallsEachObserverOnceInOrder)
{
    std::string order;
    Recorder a([&order](auto*) { order += 'a'; });
    Recorder b([&order](auto*) { order += 'b'; });
    Subject subject;
    subject.attach(b);
    subject.attach(a);
    subject.attach(b);
    subject.notify(1.0);
    subject.detach(b);
    subject.detach(b);
    subject.notify(2.0);
    EXPECT_EQ(order, "baa");
    EXPECT_FALSE(subject.isAttached(b));
}

TEST(Subject, EitherSideMayEndFirst)
{
    Recorder stays;
    auto subject = std::make_unique<Subject>();
    {
        Recorder goes;
        subject->attach(goes);
        subject->attach(stays);
    }
    subject->notify(1.0);
    EXPECT_EQ(stays.count(), 1U);
    subject.reset();
    Subject other;
    other.attach(stays);
    other.notify(2.0);
    EXPECT_EQ(stays.count(), 2U);
}

TEST(Subject, SkipsWhatIsDetachedOrDestroyedMeanwhile)
{
    Subject subject;
    auto destroyed = std::make_unique<Recorder>();
    Recorder detached;
    Recorder first([&](auto*) {
        subject.detach(detached);
        destroyed.reset();
    });
    Recorder last;
    for (Recorder* recorder : {&first, destroyed.get(), &detached, &last})
        subject.attach(*recorder);
    subject.notify(1.0);
    EXPECT_EQ(detached.count(), 0U);
    EXPECT_EQ(last.count(), 1U);
    subject.notify(2.0);
    EXPECT_EQ(last.count(), 2U);
}

TEST(Subject, ObserverMayDestroyItself)
{
    Subject subject;
    auto* self = new Recorder;
    self->_action = [self](auto*) { delete self; };
    Recorder last;
    subject.attach(*self);
    subject.attach(last);
    subject.notify(1.0);
    EXPECT_EQ(last.count(), 1U);
}

TEST(Subject, CallsNewcomersNextTime)
{
    Subject subject;
    Recorder newcomer;
    Recorder again;
    Recorder first([&](auto*) {
        subject.attach(newcomer);
        subject.detach(again); // comes back behind the newcomer
        subject.attach(again);
    });
    subject.attach(first);
    subject.attach(again);
    subject.notify(1.0);
    EXPECT_EQ(newcomer.count() + again.count(), 0U);
    first._action = {};
    subject.notify(2.0);
    EXPECT_EQ(newcomer.count(), 1U);
    EXPECT_EQ(again.count(), 1U);
}

TEST(Subject, NestedNotificationReachesWhatTheOuterOneDoesNot)
{
    Subject subject;
    Recorder newcomer;
    Recorder victim;
    Recorder first;
    first._action = [&](auto*) {
        first._action = {};
        subject.attach(newcomer);
        subject.notify(2.0);
        subject.detach(victim);
    };
    subject.attach(first);
    subject.attach(victim);
    subject.notify(1.0);
    EXPECT_EQ(first._times, (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(newcomer._times, (std::vector<double>{2.0}));
    EXPECT_EQ(victim._times, (std::vector<double>{2.0}));
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
    for (Recorder* recorder : {goes.get(), &throws, &last})
        subject.attach(*recorder);
    EXPECT_THROW(subject.notify(1.0), std::runtime_error);
    throws._action = {};
    subject.notify(2.0);
    EXPECT_EQ(last._times, (std::vector<double>{2.0}));
}

TEST(Subject, MayEndWhileItNotifiesNested)
{
    auto subject = std::make_unique<Subject>();
    Recorder never;
    Recorder first;
    first._action = [&](auto*) {
        if (first.count() == 1)
            subject->notify(2.0);
        else
            subject.reset();
    };
    subject->attach(first);
    subject->attach(never);
    subject->notify(1.0);
    EXPECT_EQ(first.count(), 2U);
    EXPECT_EQ(never.count(), 0U);
}

} // namespace

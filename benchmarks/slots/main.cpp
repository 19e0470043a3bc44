#include "benchmarks/slots/Slots.h"

int main(int argc, char** argv)
{
    return Bench::runWorkloads({{"W1", Bench::pushAndTakeOne},
                                {"W2.push", Bench::pushToMany},
                                {"W2.take", Bench::pushToManyAndTake},
                                {"W5", Bench::pushArrayToMany},
                                {"W6.slots", Bench::frameOfSlots}},
                               argc, argv);
}

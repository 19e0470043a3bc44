#pragma once

#include "trovio/InSlot.h"
#include "trovio/Node.h"
#include "trovio/OutSlot.h"

/// A node with an in-slot "in" and an out-slot "out" of floats, of a scene in which the test does what nodes do.
class PassNode : public Trovio::Node {
public:
    explicit PassNode(bool isRelay = true)
    {
        if (isRelay)
            declareRelay();
        addInSlot("in", &_in);
        addOutSlot("out", &_out);
    }

    Trovio::InSlot<float> _in{"in"};
    Trovio::OutSlot<float> _out{"out"};
};

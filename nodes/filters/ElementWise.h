#pragma once

#include "nodes/filters/Elements.h"
#include "nodes/relay/Lane.h"
#include "nodes/relay/Quaternion.h"
#include "trovio/Data.h"
#include "trovio/Settings.h"
#include <algorithm>

// A formula changes one element, which has been found usable:
//   explicit Formula(const Settings&);           throws InvalidFieldException
//   struct State;                                what it remembers of earlier values; its default: nothing
//   Outcome operator()(E&, State&, double) const; the last is the time stamp in seconds
namespace Trovio::Nodes {

/// The state of formulas that remember nothing.
struct Stateless {
    struct State {};
};

template <class E>
bool isUsable(const E& element)
{
    for (std::size_t i = 0; i < Components<E>::Count; ++i)
        if (!std::isfinite(static_cast<double>(Components<E>::get(element, i))))
            return false;
    if constexpr (std::is_same_v<E, Rotation>)
        return Quaternion(element).length() > 0.0;
    return true;
}

/// Replaces each component x by change(i, x).
template <class E, class Change>
Outcome changeComponents(E& element, Change change)
{
    for (std::size_t i = 0; i < Components<E>::Count; ++i) {
        const auto number = static_cast<double>(Components<E>::get(element, i));
        const double changed = change(i, number);
        // What stays the same stays so to the last bit: a whole number may have more of them than a double.
        if (changed != number && !setNumber(element, i, changed))
            return Outcome::BadResult;
    }
    return Outcome::Sent;
}

/// Applies a formula to single values.
template <class T, class Formula>
class ElementWise {
public:
    explicit ElementWise(const Settings& settings) : _formula(settings) {}

    Outcome operator()(Data<T>& record)
    {
        if (!isUsable(record.getValue()))
            return Outcome::BadValue;
        return _formula(record.getValue(), _state, record.getTimeStamp().getSeconds());
    }

private:
    Formula _formula;
    typename Formula::State _state;
};

/// Applies a formula to each element of arrays. An array of another length than the one before it starts anew.
template <class E, class Formula>
class ElementWise<SharedVector<E>, Formula> {
public:
    explicit ElementWise(const Settings& settings) : _formula(settings) {}

    Outcome operator()(Data<SharedVector<E>>& record)
    {
        // Others hold what arrived, so the results go into an array of their own.
        const SharedVector<E> source = record.getValue();
        SharedVector<E> result;
        result.acquire();
        if (source)
            *result = *source;
        else
            result->clear();
        record.setValue(result);
        return apply(*result, record.getTimeStamp().getSeconds());
    }

private:
    Outcome apply(std::vector<E>& elements, double stamp)
    {
        for (const E& element : elements)
            if (!isUsable(element))
                return Outcome::BadValue;
        if (_states.size() != elements.size())
            _states.assign(elements.size(), {});
        Outcome worst = Outcome::Sent;
        for (std::size_t i = 0; i < elements.size(); ++i) // to the end, so that all states have seen the same records
            worst = std::max(worst, _formula(elements[i], _states[i], stamp));
        return worst;
    }

    Formula _formula;
    std::vector<typename Formula::State> _states; // one for each element
};

} // namespace Trovio::Nodes

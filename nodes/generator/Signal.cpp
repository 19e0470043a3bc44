#include "nodes/generator/Signal.h"

#include "nodes/generator/TestPattern.h"
#include "trovio/OutSlot.h"
#include "trovio/SlotTypes.h"

namespace Trovio::Nodes {

namespace {

/// Makes single elements: numbers from a wave, or test patterns.
template <class E>
class ElementSource {
public:
    explicit ElementSource(const Settings& settings) : _wave(settings, Components<E>::Count) {}

    /// The elements of an array are spread evenly over one period.
    void fill(std::vector<E>& elements, const Tick& tick) const
    {
        for (std::size_t i = 0; i < elements.size(); ++i)
            elements[i] = make(tick, static_cast<double>(i) / static_cast<double>(elements.size()));
    }
    E make(const Tick& tick, double shift = 0.0) const { return waveValue<E>(_wave, tick, shift); }

private:
    Wave _wave;
};

template <>
class ElementSource<Image> {
public:
    explicit ElementSource(const Settings& settings) : _pattern(settings) {}

    void fill(std::vector<Image>& elements, const Tick& tick) const
    {
        for (std::size_t i = 0; i < elements.size(); ++i)
            draw(tick._index + i, elements[i]);
    }
    void draw(std::uint64_t index, Image& image) const { _pattern.draw(index, image); }

private:
    TestPattern _pattern;
};

/// Which element a slot value type is made of, and how a value of it is built anew for each record.
template <class T>
struct Production {
    using Element = T;
    static T make(const ElementSource<T>& source, const Tick& tick, std::size_t) { return source.make(tick); }
};

template <>
struct Production<SharedImage> {
    using Element = Image;
    static SharedImage make(const ElementSource<Image>& source, const Tick& tick, std::size_t)
    {
        SharedImage image;
        image.acquire();
        source.draw(tick._index, *image);
        return image;
    }
};

template <class E>
struct Production<SharedVector<E>> {
    using Element = E;
    static SharedVector<E> make(const ElementSource<E>& source, const Tick& tick, std::size_t count)
    {
        SharedVector<E> elements;
        elements.acquire();
        elements->resize(count);
        source.fill(*elements, tick);
        return elements;
    }
};

template <class T>
class TypedSignal final : public Signal {
public:
    explicit TypedSignal(const Settings& settings)
        : _source(settings),
          _count(static_cast<std::size_t>(settings.integer("elements"))),
          _slot(settings.text("slot"))
    {
    }

    BasicOutSlot& getSlot() override { return _slot; }

    void produce(const Tick& tick, const Time& stamp) override
    {
        _slot.push(Data<T>(Production<T>::make(_source, tick, _count), stamp));
    }

private:
    ElementSource<typename Production<T>::Element> _source;
    const std::size_t _count;
    OutSlot<T> _slot;
};

template <class T>
constexpr bool canBeGenerated = !std::is_same_v<typename Production<T>::Element, std::string>;

} // namespace

namespace {

/// Each of these settings may be large, but not all at once.
void checkSize(const Settings& settings)
{
    if (settings.text("type") != TypeName<SharedVector<Image>>::getName())
        return;
    constexpr std::int64_t maxPixels = std::int64_t{1} << 26; // at most 4 bytes each
    const std::int64_t pixels = settings.integer("width") * settings.integer("height");
    if (settings.integer("elements") > maxPixels / pixels)
        throw settings.refusal("elements", "at most " + std::to_string(maxPixels / pixels) + " pictures of this size");
}

} // namespace

std::unique_ptr<Signal> Signal::create(const Settings& settings)
{
    checkSize(settings);
    std::unique_ptr<Signal> signal;
    std::string allowed;
    forEachSlotType([&]<class T>(TypeTag<T>) {
        if constexpr (canBeGenerated<T>) {
            const std::string name = TypeName<T>::getName();
            allowed += (allowed.empty() ? "one of " : ", ") + name;
            if (name == settings.text("type"))
                signal = std::make_unique<TypedSignal<T>>(settings);
        }
    });
    if (!signal)
        throw settings.refusal("type", allowed);
    return signal;
}

} // namespace Trovio::Nodes

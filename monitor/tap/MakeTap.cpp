#include "monitor/tap/Tap.h"
#include "trovio/SlotTypes.h"
#include "trovio/Values.h"

namespace Monitor {

std::unique_ptr<AnyTap> makeTap(std::string_view slotType, const TapSize& size)
{
    std::unique_ptr<AnyTap> tap;
    Trovio::withSlotType(slotType, [&]<class T>(Trovio::TypeTag<T>) { tap = std::make_unique<Tap<T>>(size); });
    return tap;
}

} // namespace Monitor

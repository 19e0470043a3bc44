// Apart from the stepper, for whoever asks for the date and has no threads that take turns.
#include "trovio/Stepper.h"

namespace Trovio {

std::atomic<bool> Stepper::_active{false};
std::atomic<double> Stepper::_now{0}, Stepper::_date{0};

} // namespace Trovio

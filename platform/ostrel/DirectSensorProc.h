#pragma once

#include "ostrel/Field.h"
#include "ostrel/Subject.h"
#include <memory>

namespace Ostrel {

/// The part of a direct sensor that is serviced: its value field, and the subject that says when.
/// Ownership: owns the field; is owned by its sensor.
class DirectSensorProc {
public:
    /// The field may be null: then the proc designates none.
    explicit DirectSensorProc(std::unique_ptr<Field> field);

    Field* getField() const { return _field.get(); }
    /// Notified with the frame's time and the sensor whenever the sensor is to be serviced.
    Subject& getUpdateSubject() { return _updateSubject; }

    /// Notified with each sensor that comes into a context, and with each before it leaves it, as the first object.
    static Subject& registerSubject();
    static Subject& unregisterSubject();

    /// What every sensor says about its field: name "value", exposed, forwarding what comes in.
    static const FieldDescription& valueDescription();

private:
    std::unique_ptr<Field> _field;
    Subject _updateSubject;
};

} // namespace Ostrel

#pragma once

#include "ostrel/Field.h"
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace Ostrel {

/// One row of the table of field classes.
class FieldClass {
public:
    using Create = std::unique_ptr<Field> (*)();

    FieldClass(int code, std::string name, Create maker) : _code(code), _name(std::move(name)), _create(maker) {}

    /// Odd for single values, the next even number for the multiple values of the same kind.
    int code() const { return _code; }
    /// E.g. "MFVec3f".
    const std::string& name() const { return _name; }
    bool isMultiple() const { return _code % 2 == 0; }
    /// A new field with the default value, without node.
    std::unique_ptr<Field> create() const { return _create(); }

    /// All 42, ascending by code.
    static std::span<const FieldClass> all();
    /// Null when there is no such class.
    static const FieldClass* find(int code);
    static const FieldClass* find(std::string_view name);

private:
    int _code;
    std::string _name;
    Create _create;
};

} // namespace Ostrel

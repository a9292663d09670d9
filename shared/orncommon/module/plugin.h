#pragma once

namespace Orn::Module {

/// Base of objects that travel by reference in a value; two are equal when they are the same object.
class Plugin
{
public:
    virtual ~Plugin() = default;
};

} // namespace Orn::Module

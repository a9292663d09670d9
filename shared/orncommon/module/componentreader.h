#pragma once

#include "orncommon/module/payloads.h"

#include <string_view>

namespace Orn::Module {

/// Reads one component after the other from a bare value text. After a failure nothing more is read.
class ComponentReader
{
public:
    /// The text must outlive the reader.
    explicit ComponentReader(std::string_view text);

    /// Whether nothing is left.
    bool atEnd() const { return m_atEnd; }

    bool read(bool& component);
    bool read(int& component);
    bool read(unsigned int& component);
    bool read(float& component);
    bool read(double& component);
    /// In quotes.
    bool read(std::string& component);
    bool read(ColorRGB& color) { return read(color.r) && read(color.g) && read(color.b); }
    bool read(ColorRGBA& color) { return read(color.r) && read(color.g) && read(color.b) && read(color.a); }
    bool read(Matrix3f& matrix) { return read(matrix.values); }
    bool read(Transform& transform) { return read(transform.linear) && read(transform.translation); }
    template<class T, std::size_t N> bool read(std::array<T, N>& components)
    {
        for (T& component : components)
            if (!read(component))
                return false;
        return true;
    }
    /// Plugins have no text.
    bool read(std::shared_ptr<Plugin>&) { return fail(); }

private:
    bool fail();
    bool next(std::string_view& component);
    template<class T> bool readNumber(T& component);

    std::string_view m_rest;
    bool m_atEnd;
};

} // namespace Orn::Module

#pragma once

#include <QtGlobal>

namespace Zph::Applications::Player {

// How an export keeps what made its bitmaps. The numbers of the values are the places in the dialog's lists
// and in saved settings.
struct MetadataChoices
{
    enum class Metadata : quint8
    {
        Embedded = 0,
        File = 1, // .vlrmeta
        Disabled = 2
    };
    enum class Values : quint8
    {
        Embedded = 0,
        EmbeddedOnce = 1,
        File = 2 // .vlrprs
    };
    enum class Archive : quint8
    {
        Embedded = 0,
        EmbeddedOnce = 1,
        Reference = 2
    };

    Metadata metadata = Metadata::Embedded;
    Values values = Values::Embedded;
    Archive archive = Archive::Embedded;

    bool isEnabled() const { return metadata != Metadata::Disabled; }
    bool needsArchive() const { return isEnabled() && archive != Archive::Reference; }

    // One number: the first in bits 0 to 7, the second in bits 8 to 15, the third from bit 16 up. A part that
    // is none of the values counts as its first.
    quint32 toBits() const { return quint32(metadata) | quint32(values) << 8 | quint32(archive) << 16; }
    static MetadataChoices fromBits(quint32 bits)
    {
        const auto part = [](quint32 value) { return quint8(value > 2 ? 0 : value); };
        return {Metadata(part(bits & 0xFF)), Values(part(bits >> 8 & 0xFF)), Archive(part(bits >> 16))};
    }
};

inline bool operator==(const MetadataChoices& a, const MetadataChoices& b)
{
    return a.toBits() == b.toBits();
}

} // namespace Zph::Applications::Player

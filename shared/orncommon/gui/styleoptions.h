#pragma once

#include <QColor>

namespace Orn::Gui {

/// The colours and measures of Style. Greys are neutral: artists judge colours against them.
struct StyleOptions
{
    QColor window{0x2e, 0x2e, 0x2e};
    QColor base{0x1f, 0x1f, 0x1f};          ///< behind text that is edited, and lists
    QColor alternateBase{0x25, 0x25, 0x25}; ///< every other row of a list
    QColor button{0x42, 0x42, 0x42};
    QColor border{0x1a, 0x1a, 0x1a};
    QColor text{0xde, 0xde, 0xde};
    QColor brightText{0xff, 0xff, 0xff};
    QColor disabledText{0x94, 0x94, 0x94};
    QColor placeholderText{0x96, 0x96, 0x96};
    QColor accent{0x4d, 0xa3, 0xd9};
    QColor selection{0x2f, 0x6d, 0x99};
    QColor link{0x7c, 0xc0, 0xec};
    QColor toolTip{0x45, 0x45, 0x45};

    double disabledIconOpacity = 0.38;
    int smallIconSize = 16; ///< device-independent pixels, as all sizes here
    int sliderThickness = 18;
    int rowHeight = 24;
};

} // namespace Orn::Gui

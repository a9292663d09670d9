#pragma once

#include <QSize>
#include <QString>

#include <optional>

namespace Zph::Applications::Player::Zoom {

/// Item data of "Fit.": every other item carries the exponent of its power of two.
constexpr int kFit = 256;
constexpr int kFirstExponent = -3, kLastExponent = 4;

/// 2 to the power of an item's exponent.
double factorOfItem(int exponent);

/// The factor at which a picture just fits into a viewport, 3 pixels short on each side, its aspect ratio
/// kept.
double fitFactor(const QSize& picture, const QSize& viewport);

/// What somebody typed: a percentage with or without "%", limited to 1 to 2000 percent. None if it is no
/// number.
std::optional<double> parse(QString text);

/// "%1%" with the percentage truncated: 12.5 percent reads "12%".
QString text(double factor);

/// The picture's size at a factor, rounded half up, at least one pixel each way.
QSize scaled(const QSize& picture, double factor);

} // namespace Zph::Applications::Player::Zoom

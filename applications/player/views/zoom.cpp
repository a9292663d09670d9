#include "zoom.h"

#include <algorithm>
#include <cmath>

namespace Zph::Applications::Player::Zoom {

double factorOfItem(int exponent)
{
    return std::ldexp(1.0, exponent);
}

double fitFactor(const QSize& picture, const QSize& viewport)
{
    const QSize room(std::max(viewport.width() - 6, 1), std::max(viewport.height() - 6, 1));
    const QSize fitted = picture.scaled(room, Qt::KeepAspectRatio);
    return double(fitted.width()) / picture.width();
}

std::optional<double> parse(QString text)
{
    bool isNumber = false;
    const uint percent = text.remove('%').trimmed().toUInt(&isNumber);
    if (!isNumber)
        return std::nullopt;
    return std::clamp(percent / 100.0, 0.01, 20.0);
}

QString text(double factor)
{
    // The nudge keeps 0.29 from reading "28%".
    return QStringLiteral("%1%").arg(int(100.0 * factor + 1e-6));
}

QSize scaled(const QSize& picture, double factor)
{
    const auto side = [factor](int length) { return std::max(int(std::floor(length * factor + 0.5)), 1); };
    return {side(picture.width()), side(picture.height())};
}

} // namespace Zph::Applications::Player::Zoom

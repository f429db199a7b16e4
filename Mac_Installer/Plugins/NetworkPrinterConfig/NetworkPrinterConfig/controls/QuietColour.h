// A colour for locked or secondary text. Many palettes have too little contrast for disabled text.

#pragma once

#include <QColor>

/// A colour between those of the text and its background. Where these have a contrast of 10:1, it has at
/// least 4.5:1.
inline QColor quietColour(const QColor& text, const QColor& background) {
    constexpr float strength = 0.75F;
    const auto mixed = [](float one, float other) { return strength * one + (1 - strength) * other; };
    return QColor::fromRgbF(mixed(text.redF(), background.redF()), mixed(text.greenF(), background.greenF()),
                            mixed(text.blueF(), background.blueF()));
}

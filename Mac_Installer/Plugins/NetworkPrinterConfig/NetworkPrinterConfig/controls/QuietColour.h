// A colour for locked or secondary text. Many palettes have too little contrast for disabled text.

#pragma once

#include <QPalette>

/// A colour between the palette's active text and its background in `group`. Where these have a contrast of
/// 10:1, it has at least 4.5:1.
inline QColor quietColour(const QPalette& palette, QPalette::ColorGroup group, QPalette::ColorRole text,
                          QPalette::ColorRole background) {
    constexpr float strength = 0.75F;
    const QColor front = palette.color(QPalette::Active, text);
    const QColor back = palette.color(group, background);
    const auto mixed = [](float one, float other) { return strength * one + (1 - strength) * other; };
    return QColor::fromRgbF(mixed(front.redF(), back.redF()), mixed(front.greenF(), back.greenF()),
                            mixed(front.blueF(), back.blueF()));
}

// The four models of the series: the only table of them in C++.
//
// A row's index is also the column of the model's radio button on the page, so the order is fixed.

#pragma once

#include <array>
#include <cstddef>

struct CatalogRow {
    const char* modelName;          ///< Five characters; identifies the model in the program.
    const char* numberPart;         ///< The last three characters of the model name.
    const char* acceptedTexts[4];   ///< IEEE 1284 MDL values of the model; compared whole, case-sensitively.
    const char* ppdFileName;        ///< Value of the PPD attribute PCFileName in the model's print queues.
    const char* modelNameAndBlank;  ///< The model name and a space: the start of a hand-off line.
};

inline constexpr std::size_t modelCount = 4;

inline constexpr std::array<CatalogRow, modelCount> modelCatalog{{
    {"KV210", "210", {"TVK KV210", "TVK KV210N", "KV210", "KV210N"}, "KV210.PPD", "KV210 "},
    {"KV260", "260", {"TVK KV260", "TVK KV260N", "KV260", "KV260N"}, "KV260.PPD", "KV260 "},
    {"KV410", "410", {"TVK KV410", "TVK KV410N", "KV410", "KV410N"}, "KV410.PPD", "KV410 "},
    {"KV460", "460", {"TVK KV460", "TVK KV460N", "KV460", "KV460N"}, "KV460.PPD", "KV460 "},
}};

/// Whether a model text reported by a printer belongs to the series. Prints the text to standard output.
/// `model` is NUL-terminated and not null. Any thread.
[[nodiscard]] bool IsQuazel(const char* model);

/// The model name for a text that IsQuazel accepted: the first row whose number part occurs in it. Null if
/// none does, which can't happen for an accepted text. Any thread.
[[nodiscard]] const char* modelNameOfAcceptedText(const char* model);

/// Whether a PCFileName value of a PPD is one of the series' four, compared byte by byte; false for null. Any
/// thread.
[[nodiscard]] bool isSeriesPpdFileName(const char* value);

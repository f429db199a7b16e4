#include "discovery/ModelCatalog.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

bool IsQuazel(const char* model) {
    std::printf("PrinterInfo.szModel %s\n", model);
    for (const CatalogRow& row : modelCatalog) {
        for (const char* const accepted : row.acceptedTexts) {
            if (std::strcmp(model, accepted) == 0) {
                return true;
            }
        }
    }
    return false;
}

const char* modelNameOfAcceptedText(const char* model) {
    for (const CatalogRow& row : modelCatalog) {
        if (std::strstr(model, row.numberPart) != nullptr) {
            return row.modelName;
        }
    }
    return nullptr;
}

bool isSeriesPpdFileName(const char* value) {
    return value != nullptr &&
           std::any_of(modelCatalog.begin(), modelCatalog.end(),
                       [value](const CatalogRow& row) { return std::strcmp(value, row.ppdFileName) == 0; });
}

#include "NetworkPrinterConfig/containsCategory.h"

bool containsString(const QString& receiver, const QString& argument) {
    return !argument.isEmpty() && receiver.contains(argument, Qt::CaseSensitive);
}

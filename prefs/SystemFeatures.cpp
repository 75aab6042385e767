#include "prefs/SystemFeatures.h"

#include "platform/WideText.h"
#include "platform/os/DeviceRoot.h"
#include "prefs/ApplicationIdentity.h"
#include "json/JSONImporterExporter.h"
#include "json/JSONReader.h"

#include <algorithm>

std::vector<std::string> readSystemFeatures() {
    const std::string file = os::hostPath(toNarrow(ApplicationIdentity::instance().systemFeaturesPath()));
    const KeltoGuard guard(jsonEngineLock);
    return getStringList(parseJsonFile(file.c_str()).objectValue, "features");
}

bool hasFeature(const std::vector<std::string>& features, std::string_view name) {
    return std::ranges::find(features, name) != features.end();
}

#pragma once

#include "platform/os/DeviceRoot.h"
#include "prefs/ApplicationIdentity.h"
#include "prefs/KQTranslator.h"

#include <QGuiApplication>
#include <QString>

#include <gtest/gtest.h>

#include <string>

/// The values of the languages on offer, in their order. The texts are written in the first.
constexpr const char* kLanguages[] = {"english", "deutsch", "espanol", "francais", "zhongwen"};

/// Takes the name under which the build has staged the languages beside the tests.
inline QGuiApplication* asUpgradeUI() {
    ApplicationIdentity::instance().setApplicationName("UpgradeUI");
    return qGuiApp;
}

inline QString stagedTranslation(const char* value) {
    return QString::fromStdString(ApplicationIdentity::instance().appTranslationsFolder() + '/' + value +
                                  ".qm");
}

/// Names a test after its language.
inline std::string languageOf(const ::testing::TestParamInfo<const char*>& info) { return info.param; }

inline QString stagedWideFont() {
    return QString::fromStdString(os::hostPath("/boot/fonts/DroidSansFallbackFull.ttf"));
}

#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <string_view>

/// A GUID and the name that people read for it. Only the GUID identifies.
///
/// One that is not 36 characters of the form 8-4-4-4-12, hexadecimal in upper case, does not compile.
struct VocabularyEntry {
    consteval VocabularyEntry(std::string_view theGuid, std::string_view theName)
        : guid(theGuid), name(theName) {
        if (!isGuid(theGuid))
            throw "not a GUID";
    }

    std::string_view guid;
    std::string_view name;

private:
    static consteval bool isGuid(std::string_view text) {
        constexpr std::string_view kForm = "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX";
        return std::ranges::equal(text, kForm, [](char c, char form) {
            const bool isDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
            return form == 'X' ? isDigit : c == form;
        });
    }
};

/// The texts by which the programs of the printer know the values that they share: the one list of them, as
/// far as this application takes part. Which group a property belongs to, its type and its default are told
/// where it is created; it stands here under the group in which it is found.
namespace vocabulary {

namespace components {
inline constexpr VocabularyEntry kUpgradeUI{"38D1431E-6153-4773-8A5C-7BCA173263F7", "Upgrade UI"};
inline constexpr VocabularyEntry kFirmwareDriver{"B80EB2EA-4F49-423A-875C-8ACB1ACB9734", "Firmware Driver"};
} // namespace components

namespace groups {
inline constexpr VocabularyEntry kGeneral{"99A61D40-20CE-41EA-A579-EB92C6ED94C6", "General"};
inline constexpr VocabularyEntry kError{"2EBF9DEF-D51C-47FE-935E-5EDCC530B867", "Error"};
inline constexpr VocabularyEntry kDebugZone{"E96B0063-C2EF-4545-92E1-AC4990BA1B37", "Debug Zone"};
inline constexpr VocabularyEntry kComponents{"ADC1E631-2C12-4267-B128-95830EC9857D", "Components"};
inline constexpr VocabularyEntry kDisplayPreferences{"42A35D75-EA59-4012-8996-8813760C353A",
                                                     "Display Preferences"};
inline constexpr VocabularyEntry kBattery{"FDA4C5D4-8C46-45E5-80E4-48504451C7B5", "Battery"};
inline constexpr VocabularyEntry kProductInfo{"222D688A-1554-4C0E-B7A0-0BC377EF4071", "Product Info"};
inline constexpr VocabularyEntry kLocallyStoredPreferences{"80453947-6089-4EC7-9742-AAF6725EFAEA",
                                                           "Locally Stored Preferences"};
} // namespace groups

namespace properties {

// General
inline constexpr VocabularyEntry kNameOfPropertyFile{"CD31503F-4949-40E1-BA2C-B2A88CF420F0",
                                                     "Name of Property File"};
inline constexpr VocabularyEntry kNameOfPropertyOverrideFile{"C8B8886D-A101-47A9-BC60-477938C53648",
                                                             "Name of Property Override File"};
inline constexpr VocabularyEntry kLoadProperties{"0D9B0F83-2282-4728-A78E-FE2FF4E3A13C", "Load Properties"};
inline constexpr VocabularyEntry kStoreProperties{"DDF2926A-0A65-4196-88FE-5858BC957E0B", "Store Properties"};
inline constexpr VocabularyEntry kPropertyPublishingPeriodInMs{"DA821DC5-948D-4659-9B52-177E4C102129",
                                                               "Property Publishing Period in ms"};
inline constexpr VocabularyEntry kDotsPerInch{"890AF444-4F6B-44E9-B3F6-EA0239DE6317", "Dots Per Inch"};

// Error
inline constexpr VocabularyEntry kPropertyLoadingError{"A32AFFED-7C37-47FE-80DB-B21875E226BD",
                                                       "Property Loading Error"};

// Battery
inline constexpr VocabularyEntry kBatteryACConnected{"ECDD0A3C-DFCB-4F47-A2EA-235C5803657C",
                                                     "Battery AC Connected"};

// Product Info
inline constexpr VocabularyEntry kFirmwareVersion{"ACEB1224-1DAF-42A2-BBAA-4678D5D3C8DA", "Firmware Version"};
inline constexpr VocabularyEntry kFirmwareBuildNumber{"DFB7462A-E1F1-4156-BCFB-A9B878F7FBFF",
                                                      "Firmware Build Number"};

// Display Preferences
inline constexpr VocabularyEntry kFullPartName{"A07DF52F-043A-4F0E-88BF-9006F683AE88", "Full part name"};
inline constexpr VocabularyEntry kScreenResolutionWidth{"8730BB0A-A5B7-4D3E-9506-184B94AF3BBE",
                                                        "Screen Resolution Width"};
inline constexpr VocabularyEntry kScreenResolutionHeight{"78AADDEA-5E63-40EC-A813-2E5B1DC66DB8",
                                                         "Screen Resolution Height"};
inline constexpr VocabularyEntry kPrinterStatusDisplay{"B9B393F9-049E-48AF-BF83-90F417EB1673",
                                                       "Printer Status Display"};
inline constexpr VocabularyEntry kStoredJobsUIView{"5D0DE60F-2B19-4491-B676-2A0DA91616BF",
                                                   "StoredJobsUIView"};
inline constexpr VocabularyEntry kMeasurementUnit{"61694461-E22C-40D5-87F6-57A01074CD6E", "Measurement Unit"};
inline constexpr VocabularyEntry kHourFormat24{"C77582FC-3F76-45A5-8961-59F30EA112EC", "Hour Format 24"};
inline constexpr VocabularyEntry kSecretDevelopmentSettings{"3D7BBF93-10EF-4CAE-8FA3-99F09E195871",
                                                            "Secret Development Settings"};
inline constexpr VocabularyEntry kLanguage{"9F8EE615-2887-4AF9-8A06-37902964D991", "Language"};
inline constexpr VocabularyEntry kInvertScreen{"66D447AA-7AD0-4676-BC43-87FFE9913C83", "Invert Screen"};

// Locally Stored Preferences
inline constexpr VocabularyEntry kConnectedPrinterIPAddress{"C1C53326-8256-4A0D-8654-6600348C7A0F",
                                                            "Connected Printer IP Address"};
inline constexpr VocabularyEntry kManufacturingReportLocation{"1B3011D1-5E3F-4BB2-BB55-9C6FDE90DD17",
                                                              "Manufacturing Report Location"};
inline constexpr VocabularyEntry kYBFileLocation{"F2DDEB81-8911-4F2F-B99A-1C8B6670E239", "YB File Location"};
inline constexpr VocabularyEntry kManufacturingDisplayMode{"79B30239-126B-42FF-A02C-50A94F5E2E19",
                                                           "Manufacturing Display Mode"};
inline constexpr VocabularyEntry kEmulateSupplies{"68C7028F-A07F-410A-8BB7-2D44D9E1755A", "Emulate Supplies"};
} // namespace properties

// What a report on a property that could not be found says.
namespace misses {
inline constexpr std::string_view kGroup = "Unknown Group"; // the component too
inline constexpr std::string_view kProperty = "Unknown Property";
inline constexpr std::string_view kValue = "Invalid Value";
} // namespace misses

struct DebugZone {
    VocabularyEntry property;
    bool byDefault;
};

/// The properties of the group kDebugZone, in the order in which they are created.
inline constexpr std::array<DebugZone, 18> kDebugZones{{
    {{"7768EEBB-FFC6-400A-986E-9FBE409FCB86", "Enable Error Debug Zone"}, true},
    {{"22EB0B47-601A-45AB-A506-E379E2C8833F", "Enable Warning Debug Zone"}, true},
    {{"8D6BC3E1-3943-4E0D-97E7-601690F93C1E", "Enable Info Debug Zone"}, false},
    {{"B1D20790-2816-438F-ABFA-A72D9FEA1964", "DebugZoneProperty"}, false},
    {{"F9E48F35-D625-4015-89F8-10F5FC3C6D27", "DebugZonePropertyWarning"}, true},
    {{"2C356A8C-215F-4AE5-9604-1198D7C563C9", "Debug Zone DeInit"}, false},
    {{"E61A6BE6-42F5-4EF9-84F0-3030263CCE3F", "Debug Zone PICL"}, false},
    {{"6B6CE145-7E20-4AB8-8D2E-3B3683CA2BDC", "DebugZoneUsb"}, false},
    {{"A45C7820-29AC-4882-A880-ADD699C825FB", "DebugZonePrintJob"}, false},
    {{"38F80DB6-1923-43CB-A706-7E67BA8D2088", "DebugZoneBattery"}, false},
    {{"6A7D44F9-B3BD-4029-A6DF-1240647D2758", "Debug Zone SQA Monitor"}, true},
    {{"1ACE8409-C525-41D7-89F7-023AD44BBA72", "DebugZoneRamp"}, false},
    {{"48EB170C-B730-4B60-851C-0ACF68AB5A59", "DebugZoneInit"}, false},
    {{"3CB08E5C-CCE4-4019-AD59-64C4975E7B0D", "Debug Zone Manufacturing"}, false},
    {{"33DA4993-F121-42F3-A92F-A9B6CE41C45B", "LeakTracking"}, false},
    {{"93840CDA-7763-4E68-A89B-9FE743520DA2", "ThreadIds"}, true},
    {{"187820B9-D046-4CC0-8E5C-00A0FA5CB411", "DebugZoneBpl"}, false},
    {{"70B0AF8B-0344-4EEE-9ECA-29A018FC3ABF", "DebugZoneBT"}, false},
}};

/// Returns the process-wide flag of the zone at @p index of kDebugZones, which starts with the zone's
/// default. Requires: @p index is below 18. Thread: any.
std::atomic<bool>& debugZoneFlag(std::size_t index);

} // namespace vocabulary

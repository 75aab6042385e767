#pragma once

#include "app/UpgradeInterface.h"

#include <utility>
#include <vector>

/// A link whose handlers a test calls itself, and which writes down the user's actions.
class FakeLink final : public UpgradeInterface {
public:
    void start() override { started = true; }
    void sendUserAction(UserAction action) override { actions.push_back(action); }
    void setDisplayHandler(DisplayHandler handler) override { set(display, std::move(handler)); }
    void setProgressHandler(ProgressHandler handler) override { set(progress, std::move(handler)); }
    void setPrinterInfoHandler(InfoHandler handler) override { set(printerInfo, std::move(handler)); }
    void setPackageInfoHandler(InfoHandler handler) override { set(packageInfo, std::move(handler)); }
    void setPackageSizeHandler(PackageSizeHandler handler) override { set(packageSize, std::move(handler)); }
    void setRepairAvailableHandler(RepairAvailableHandler handler) override {
        set(repairAvailable, std::move(handler));
    }

    void stop() override {}

    std::vector<UserAction> takeActions() { return std::exchange(actions, {}); }

    DisplayHandler display;
    ProgressHandler progress;
    InfoHandler printerInfo;
    InfoHandler packageInfo;
    PackageSizeHandler packageSize;
    RepairAvailableHandler repairAvailable;
    std::vector<UserAction> actions;
    bool started = false;
    bool setAfterStart = false;

private:
    template <typename Handler>
    void set(Handler& place, Handler handler) {
        place = std::move(handler);
        setAfterStart = setAfterStart || started;
    }
};

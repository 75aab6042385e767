#pragma once

#include "property/BoolProperty.h"

/// A command in the shape of a property: setting it to true runs its listeners, each time. The value is not
/// the command but its outcome: false before the first firing, then whether all that reported succeeded.
///
/// Each listener ends with recordResult().
class TriggerProperty : public BoolProperty {
public:
    using BoolProperty::BoolProperty;

    /// Fires if @p value is true; the outcome stays readable until a listener reports. False does nothing.
    /// Thread: any. Blocks while the listeners run.
    void setValue(bool value) override;

    /// Takes the outcome of one listener. The first failure stays until the next firing, whatever is
    /// reported behind it. Thread: any.
    void recordResult(bool ok);

private:
    KeltoMutex m_resultLock;
    bool m_failed KELTO_GUARDED_BY(m_resultLock) = false;
};

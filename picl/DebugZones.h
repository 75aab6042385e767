#pragma once

class PropertyManager;

/// Enters the properties of the debug zones in @p manager, with the present values of their flags, or with
/// what is stored. From then on each flag follows its property. Thread: any.
void createDebugZones(PropertyManager& manager);

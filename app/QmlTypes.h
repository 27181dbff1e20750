#pragma once

/// Makes the record classes known to QML by their names, as types that a property may have and that no scene
/// may create ("import Velstrand 1.0"), and LongText as one that it may. Call it before a scene is loaded.
void registerQmlTypes();

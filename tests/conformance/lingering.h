/// Callbacks that stay inside until the test lets them go, to see who waits for them.
#pragma once

#include <stdbool.h>
#include <stdint.h>

/// To be called before a callback may linger.
void prepareLingering(void);

/// For callbacks: announces itself and stays until the test lets it go.
void linger(void);

/// Waits until a callback lingers.
bool waitForLingerer(uint32_t milliseconds);

/// Makes `call` on another thread while a callback lingers, and checks that it returns only when the callback
/// has been let go and has left.
void checkThatItWaits(void (*call)(void));

/// The same calls made when all of them must be refused alike, with arguments that are otherwise good.
#pragma once

#include "vimba_c_types.h"

/// Every feature function answers `wanted` for this handle.
void everyFeatureFunctionAnswers(VmbError_t wanted, VmbHandle_t handle);

/// Every function that needs an open camera answers `wanted` for this handle; CaptureStart may also answer
/// `wantedFromStart`.
void everyCameraFunctionAnswers(VmbError_t wanted, VmbError_t wantedFromStart, VmbHandle_t handle);

/// Every function that closes something answers `wanted` for this handle.
void everyClosingFunctionAnswers(VmbError_t wanted, VmbHandle_t handle);

/// Every function that takes no handle (VmbVersionQuery, VmbStartup and VmbShutdown apart) answers `wanted`.
void everyFunctionWithoutHandleAnswers(VmbError_t wanted);

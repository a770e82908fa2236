// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Compiled only by the test build.LayerViolationFailsToCompile, which expects
// this file NOT to compile: a storage-layer file cannot see the app layer.
#include "app/app_delegate.h"
#include "storage/user_settings.h"

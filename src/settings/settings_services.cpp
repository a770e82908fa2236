// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/settings_services.h"

Q_LOGGING_CATEGORY(lcSettings, "quillix.settings")

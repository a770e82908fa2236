// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

struct xcb_connection_t;

// Whether a compositing manager draws the screen of this X display: the
// _NET_WM_CM_S<screen> selection has an owner. Without one, transparent
// window pixels show black and a window is off the screen as soon as the
// server unmaps it.
bool x11CompositorRunning(xcb_connection_t* connection);

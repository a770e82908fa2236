#pragma once

#include <QImage>
#include <QString>

// Writes `image` as PNG into the temporary folder under a fresh upper-case
// UUID name ("<UUID>.png") for a notification to show, and returns the file's
// path; empty when the image is null or the file cannot be written. Safe to
// call from any thread.
QString writeNotificationAttachment(const QImage& image);

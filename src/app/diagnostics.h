#pragma once

#include <QString>

// Diagnostic lines go to standard output, one per line, flushed at once so
// they interleave correctly with other output. Success lines of the capture
// and hotkey code start with "✅ Quillix: ", failures with "⚠️ Quillix: ".
void printDiagnostic(const QString& line);

#pragma once

#include <QString>

class CgwBitmapBase;

// Writes a scanned bitmap by the target's extension: PNG through Qt (8 or 16
// bits a sample, as the bitmap has them), any other extension through the
// image file format that lists it. The infrared bitmap, when given, goes
// into the same file where the format holds it, else beside it as
// "<name>_ir.png". False with a reason in `error`.
bool gwWriteScan(const QString& path, const CgwBitmapBase& bitmap, const CgwBitmapBase* ir, QString* error);

// Whether gwWriteScan knows how to write `path`; else the reason in `error`.
bool gwCanWriteScan(const QString& path, QString* error);

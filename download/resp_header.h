// The part of an answer's head that a download keeps.
#pragma once

#include <QtGlobal>

/// The fields of a head. Missing fields stay zero or empty, so without a length no body is saved.
struct resp_header
{
    qint32 status_code = 0; ///< Number in the status line; stored, never examined.
    char content_type[128] =
        {}; ///< First word of the type, truncated to 127 characters; never examined.
    qint64 content_length = 0; ///< Announced length of the recording in bytes.
    char file_name[256] = {};  ///< Reserved; not filled.
};

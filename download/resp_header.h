// What a download keeps of an answer's head.
#pragma once

#include <QtGlobal>

/// The fields of a head. What the head does not name stays zero or empty, so an answer without a
/// length brings no body.
struct resp_header
{
    qint32 status_code = 0;      ///< Status line's number; kept, never examined.
    char content_type[128] = {}; ///< First word of the type, cut at 127 characters; never examined.
    qint64 content_length = 0;   ///< Announced length of the recording in bytes.
    char file_name[256] = {};    ///< Reserved; not filled.
};

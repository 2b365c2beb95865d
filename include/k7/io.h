// Files: the replaceable interfaces and their native implementation, checksum companions, XML.
#pragma once

#include <k7/io/crc.h>
#include <k7/io/file.h>
#include <k7/io/io.h>
#include <k7/io/io_native.h>
#include <k7/io/xml_elem.h>
#include <k7/io/xml_output.h>

// K7XmlOutputType_t: in which flavour records are rendered as XML.
#pragma once

/// Flavour of an XML rendering. Any other value renders what is common to all, without keys.
enum K7XmlOutputType_t : int {
  K7XML_PLAIN = 0,
  K7XML_FULL = 1,      ///< with the keys of the record and of related ones, and all details
  K7XML_DISPLAY = 2,   ///< for reading: positions in one element, coded values in words
  K7XML_DOCUMENT = 4,  ///< the text of a regional note itself; plain for all other records
};

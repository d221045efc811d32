// The families of diagnostics, each an enumeration whose values are numbers; their texts are in
// diagntexts.cpp.
//
// Names: a leading D is a decoder, E an encoder, ME the way from the image in memory to a file format. CS is
// the codestream, EBCOT the code-block layer, PH the packet header, DIB and PNM the image file formats.
#ifndef JPEG2000_DIAGNFAMILIES_H
#define JPEG2000_DIAGNFAMILIES_H

namespace jpeg2000 {

// Sent to the sink.
enum class DDIBWarning : int {};
enum class DEBCOTWarning : int {};
enum class DJP2BoxWarning : int {};
enum class DJP2CSWarning : int {};
enum class DJP2FileWarning : int {};
enum class DJP2MarkerWarning : int {};
enum class DPHWarning : int {};
enum class DPNMWarning : int {};
enum class EDIBWarning : int {};
enum class MEDIBWarning : int {};
enum class MEPNMWarning : int {};

// Thrown.
enum class MemoryException : int {};
enum class DPNMException : int {};
enum class DJP2MarkerException : int {};
enum class DJP2FileException : int {};
enum class DJP2CSUnsuppException : int {};
enum class DJP2CSException : int {};
enum class DJP2BoxException : int {};
enum class DDIBException : int {};
enum class CmdOptionsException : int {};
enum class ByteInputException : int {};
enum class DisplayException : int {};
enum class TranscodingException : int {};

const char* diagnText(DDIBWarning value);
const char* diagnText(DEBCOTWarning value);
const char* diagnText(DJP2BoxWarning value);
const char* diagnText(DJP2CSWarning value);
const char* diagnText(DJP2FileWarning value);
const char* diagnText(DJP2MarkerWarning value);
const char* diagnText(DPHWarning value);
const char* diagnText(DPNMWarning value);
const char* diagnText(EDIBWarning value);
const char* diagnText(MEDIBWarning value);
const char* diagnText(MEPNMWarning value);
const char* diagnText(MemoryException value);
const char* diagnText(DPNMException value);
const char* diagnText(DJP2MarkerException value);
const char* diagnText(DJP2FileException value);
const char* diagnText(DJP2CSUnsuppException value);
const char* diagnText(DJP2CSException value);
const char* diagnText(DJP2BoxException value);
const char* diagnText(DDIBException value);
const char* diagnText(CmdOptionsException value);
const char* diagnText(ByteInputException value);
const char* diagnText(DisplayException value);
const char* diagnText(TranscodingException value);

} // namespace jpeg2000

#endif

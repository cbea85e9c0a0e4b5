// The table of COM failure codes that VBScript reports under its own numbers.
#include "vbscript/hresult_map.h"

#include <algorithm>
#include <iterator>

namespace qv::vbs {
namespace {

struct HresultRow {
  uint32_t hresult;
  int32_t number;
};

// Sorted by code, so a lookup is a binary search.
constexpr HresultRow kRows[] = {
    {0x80004001, 445},  // E_NOTIMPL
    {0x80004002, 430},  // E_NOINTERFACE
    {0x80020001, 438},  // DISP_E_UNKNOWNINTERFACE
    {0x80020003, 438},  // DISP_E_MEMBERNOTFOUND
    {0x80020004, 448},  // DISP_E_PARAMNOTFOUND
    {0x80020005, 13},   // DISP_E_TYPEMISMATCH
    {0x80020006, 438},  // DISP_E_UNKNOWNNAME
    {0x80020007, 446},  // DISP_E_NONAMEDARGS
    {0x80020008, 458},  // DISP_E_BADVARTYPE
    {0x8002000A, 6},    // DISP_E_OVERFLOW
    {0x8002000B, 9},    // DISP_E_BADINDEX
    {0x8002000C, 447},  // DISP_E_UNKNOWNLCID
    {0x8002000D, 10},   // DISP_E_ARRAYISLOCKED
    {0x8002000E, 450},  // DISP_E_BADPARAMCOUNT
    {0x8002000F, 449},  // DISP_E_PARAMNOTOPTIONAL
    {0x80020011, 451},  // DISP_E_NOTACOLLECTION
    {0x8002802F, 453},  // TYPE_E_DLLFUNCTIONNOTFOUND
    {0x80028CA0, 13},   // TYPE_E_TYPEMISMATCH
    {0x80028CA1, 9},    // TYPE_E_OUTOFBOUNDS
    {0x80028CA2, 57},   // TYPE_E_IOERROR
    {0x80028CA3, 322},  // TYPE_E_CANTCREATETMPFILE
    {0x80030002, 432},  // STG_E_FILENOTFOUND
    {0x80030003, 76},   // STG_E_PATHNOTFOUND
    {0x80030004, 67},   // STG_E_TOOMANYOPENFILES
    {0x80030005, 70},   // STG_E_ACCESSDENIED
    {0x80030008, 7},    // STG_E_INSUFFICIENTMEMORY
    {0x80030012, 67},   // STG_E_NOMOREFILES
    {0x80030013, 70},   // STG_E_DISKISWRITEPROTECTED
    {0x8003001D, 57},   // STG_E_WRITEFAULT
    {0x8003001E, 57},   // STG_E_READFAULT
    {0x80030020, 75},   // STG_E_SHAREVIOLATION
    {0x80030021, 70},   // STG_E_LOCKVIOLATION
    {0x80030050, 58},   // STG_E_FILEALREADYEXISTS
    {0x80030070, 61},   // STG_E_MEDIUMFULL
    {0x800300FC, 53},   // STG_E_INVALIDNAME
    {0x80030100, 70},   // STG_E_INUSE
    {0x80030101, 70},   // STG_E_NOTCURRENT
    {0x80030103, 57},   // STG_E_CANTSAVE
    {0x80040154, 429},  // REGDB_E_CLASSNOTREG
    {0x800401E3, 429},  // MK_E_UNAVAILABLE
    {0x800401E6, 432},  // MK_E_INVALIDEXTENSION
    {0x800401EA, 432},  // MK_E_CANTOPENFILE
    {0x800401F3, 429},  // CO_E_CLASSSTRING
    {0x800401F5, 429},  // CO_E_APPNOTFOUND
    {0x800401FE, 429},  // CO_E_APPDIDNTREG
    {0x80070005, 70},   // E_ACCESSDENIED
    {0x8007000E, 7},    // E_OUTOFMEMORY
    {0x80070057, 5},    // E_INVALIDARG
    {0x800706BA, 462},  // RPC_S_SERVER_UNAVAILABLE
    {0x80080005, 429},  // CO_E_SERVER_EXEC_FAILURE
};

constexpr uint32_t kFacilityControl = 0x800A0000;

}  // namespace

int32_t ErrorNumberOfHresult(int32_t hresult) {
  const auto code = static_cast<uint32_t>(hresult);
  if ((code & 0xFFFF0000u) == kFacilityControl) return static_cast<int32_t>(code & 0xFFFFu);
  const auto* row = std::lower_bound(std::begin(kRows), std::end(kRows), code,
                                     [](const HresultRow& r, uint32_t c) { return r.hresult < c; });
  if (row != std::end(kRows) && row->hresult == code) return row->number;
  return hresult;
}

}  // namespace qv::vbs

// Network addresses of the iSCSI classes as text.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <string>

#include "quista/records/adapter_records.h"

namespace quista {

/// Eight groups of four lower-case hexadecimal digits, without compression.
void FormatIpV6Text(std::wstring& text, const unsigned char* address);

/// The address that an ISCSI_IP_Address object holds: `type` 0 its text in double quotes, 1 its
/// IPv4 form, 2 its IPv6 form.
/// @param text receives the text, which the caller frees with free(); untouched for other types
/// @return the result of the property read; 1 for other types
HRESULT GetAddressText(IWbemClassObject* address, unsigned long type, wchar_t** text);

/// Fills one record per portal object; a portal that cannot be read becomes invalid.
/// @return the result of the last portal
HRESULT GetPortalAddresses(IWbemClassObject* const* portals, _KORVADSM_ISCSI_PORTAL* records,
                           unsigned long count);

}  // namespace quista

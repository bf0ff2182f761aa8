// A disk's model, from the forms in which sources write it.
#pragma once

#include <string>

namespace kel {

/// Vendor and product as one text with single blanks. The vendor is dropped when it is a bus or a placeholder
/// ("NVMe", "ATA", "Generic"), or when the product starts with it.
std::wstring MakeDiskModel(const std::wstring& vendor, const std::wstring& product);

/// The name of a disk or an optical drive from WMI or the Setup API, without such a vendor at its start and
/// without the suffix that the system appends, such as " SCSI Disk Device".
std::wstring TidyDiskModel(const std::wstring& name);

/// The model in a hardware id such as `IDE\DISKST31000528AS____________CC38____`; empty for other forms.
std::wstring ReadIdeModel(const std::wstring& hardwareId);

/// Whether a model is a truncated form of a longer one. A SCSI inquiry, for example, truncates it to 16
/// characters.
bool IsCutModel(const std::wstring& model, const std::wstring& longer);

}  // namespace kel

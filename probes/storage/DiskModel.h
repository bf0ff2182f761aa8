// What a disk is called, from the texts in which sources write it.
#pragma once

#include <string>

namespace kel {

/// Vendor and product as one text with single blanks. A vendor that is none ("NVMe", "ATA", "Generic"), or
/// with which the product starts, is dropped.
std::wstring MakeDiskModel(const std::wstring& vendor, const std::wstring& product);

/// The name of a disk or an optical drive as WMI or the Setup API has it, less such a vendor at its start and
/// what the system put behind it, such as " SCSI Disk Device".
std::wstring TidyDiskModel(const std::wstring& name);

/// The model in a hardware id such as `IDE\DISKST31000528AS____________CC38____`; empty for other forms.
std::wstring ReadIdeModel(const std::wstring& hardwareId);

/// Whether a model is the beginning of a longer one. An inquiry, for one, cuts it after 16 characters.
bool IsCutModel(const std::wstring& model, const std::wstring& longer);

}  // namespace kel

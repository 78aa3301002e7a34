// The operations of the address-book library, as programs find them by name in
// QUOLTANIS.framework/Versions/A/QUOLTANIS. Plain C over string objects (CFStringRef, which is an NSString *).
//
// Each operation takes NULL for any pointer and answers a failure; none throws. A status is 0 or a value of
// quoltanis/status.h; records are those of quoltanis/records.h, and a buffer for one may have any alignment.
// One thread at a time.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// Individuals and groups, of a file and of a printer side by side.
typedef struct ABIFData *ABIFDataRef;

// Begins anew with the printer's address book: no printer is set, and the configuration file is read.
CF_EXPORT UInt32 Abif_Initialize(void *context);
// with_address 0, or an address that is NULL, empty or no string: no printer. A printer without a network (on USB) has
// none. The version of the protocol is of no consequence: LDAP has one.
CF_EXPORT void AbifDevice_SetDestinationDevice(void *context, UInt32 with_address, CFStringRef address, UInt32 version);
// 0x21000001 when the printer answers, else why not; never 0. Waits no longer than the configured time-out.
CF_EXPORT UInt32 AbifDevice_GetStatus(void *context, void *reserved);
// Replaces the handle's contacts and fax groups by the printer's; unchanged by a failure. Every selector reads them.
// Waits no longer than six time-outs.
CF_EXPORT UInt32 AbifDevice_ReadData(void *context, ABIFDataRef data, UInt32 selector, CFStringRef password);

// The folder of the PC address books, NULL when there is none, and the names of the files in it, each ended by U+0000,
// NULL when there are none. The caller does not release them; they live as long as the process.
CF_EXPORT CFStringRef AbifGADFile_GetFileDirectory(void);
CF_EXPORT CFStringRef AbifGADFile_GetFileList(void);
// Replaces the handle's individuals and groups of a file by those of the file; unchanged by a failure. reserved has no
// effect, here and below.
CF_EXPORT UInt32 AbifGADFile_Read(CFStringRef path, ABIFDataRef data, UInt32 reserved);
// Adds the handle's individuals to the file, all of them or none.
CF_EXPORT UInt32 AbifGADFile_Add(CFStringRef path, ABIFDataRef data, UInt32 reserved);

// NULL when there is no memory. The caller deletes it.
CF_EXPORT ABIFDataRef ABIFData_Create(void);
CF_EXPORT void ABIFData_Delete(ABIFDataRef data);

CF_EXPORT SInt32 ABIFData_GetCount_MyFax(ABIFDataRef data);
CF_EXPORT SInt32 ABIFData_GetCount_MyFaxGroup(ABIFDataRef data);
CF_EXPORT SInt32 ABIFData_GetCount_Contact(ABIFDataRef data);
CF_EXPORT SInt32 ABIFData_GetCount_FaxGroup(ABIFDataRef data);

// Write one record: 1064 bytes; 186 and 2 for each member; 278; 178 and 2 for each member. Nothing for an index that is
// not there.
CF_EXPORT UInt32 ABIFData_GetAt_MyFax(ABIFDataRef data, UInt32 index, void *record);
CF_EXPORT UInt32 ABIFData_GetAt_MyFaxGroup(ABIFDataRef data, UInt32 index, void *record);
CF_EXPORT UInt32 ABIFData_GetAt_Contact(ABIFDataRef data, UInt32 index, void *record);
CF_EXPORT UInt32 ABIFData_GetAt_FaxGroup(ABIFDataRef data, UInt32 index, void *record);

// Adds count records of 1064 bytes to the handle, all of them or none: 0x20000008 for an empty name, 0x20000001 for a
// text that does not end inside its field or is no Unicode, 0x20000010 for a name and number that is in the handle
// already or comes twice. `Id` is not read.
CF_EXPORT UInt32 ABIFData_Add_MyFax(ABIFDataRef data, UInt32 count, void const *records);

#ifdef __cplusplus
}
#endif

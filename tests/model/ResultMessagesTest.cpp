#include "foundation/ResultMessages.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

struct Message {
    std::string text;
    const char *key;
    std::string expected;
};

// clang-format off
const Message withText[] = {
    {Info_Success, "Info_Success", "Info Success"},
    {Info_UnknownError, "Info_UnknownError", "Unknown error!"},
    {Info_Com_NotOpen, "Info_Com_NotOpen", "Serial port hasn't been opened yet!"},
    {Info_Com_AlreadyOpen, "Info_Com_AlreadyOpen", "Serial port already opened!"},
    {Info_Com_CantOpen, "Info_Com_CantOpen", "Failed to open serial port!"},
    {Info_Com_SendFail, "Info_Com_SendFail", "send over serial port fail!"},
    {Info_NoResponse, "Info_NoResponse", "No response from the device...\nPlease verify the boot mode configuration.\nCheck the UART cable.\nReset the device then run again."},
    {Info_UnRecognizedDevice, "Info_UnRecognizedDevice", "Unrecognized device...\nPlease, reset your device then try again."},
    {Info_AccessProtection, "Info_AccessProtection", "The device is access protection!"},
    {Info_EraseProgramProtection, "Info_EraseProgramProtection", "The device is erase and program protection!"},
    {Info_CMDNotAllowed, "Info_CMDNotAllowed", "The cmd not allowed!"},
    {Info_Program_InputParamsError, "Info_Program_InputParamsError", "Input parameters error!"},
    {Info_Program_VerifyDataNotMatching, "Info_Program_VerifyDataNotMatching", "Verify failed. Data not matching..."},
    {Info_Files_Empty, "Info_Files_Empty", "File is empty!"},
    {Info_Files_BadSuffex, "Info_Files_BadSuffex", "File bad suffex!"},
    {Info_Files_UNABLETOOPENTEMPFILE, "Info_Files_UNABLETOOPENTEMPFILE", "Cannot open temporary file!"},
    {Info_Files_UNABLETOOPENFILE, "Info_Files_UNABLETOOPENFILE", "Cannot open file!"},
    {Info_Files_BADFORMAT, "Info_Files_BADFORMAT", "File's format error!"},
    {Info_Files_BADADDRESSRANGE, "Info_Files_BADADDRESSRANGE", "File's bad address range!"},
    {Info_Files_BADPARAMETER, "Info_Files_BADPARAMETER", "File's bad paramer!"},
    {Info_Files_NOTOPEN, "Info_Files_NOTOPEN", "File not open!"},
    {Info_Files_SETELEMENTFULL, "Info_Files_SETELEMENTFULL", "Cannot open file!"},
    {Info_FWCRC_CheckFailed, "Info_FWCRC_CheckFailed", "Firmware CRC check failed!"},
    {Info_Progress_Operation_Success, "Info_Progress_Operation_Success", "Operation finished successfully!"},
    {Info_Download_Operation_Success, "Info_Download_Operation_Success", "Download successfully!"},
    {Info_FWCRC_Operation_Success, "Info_FWCRC_Operation_Success", "Firmware CRC check successfully!"},
    {Info_Erase_Operation_Success, "Info_Erase_Operation_Success", "Erase successfully!"},
    {Info_Upload_Operation_Success, "Info_Upload_Operation_Success", "Upload successfully!"},
    {Info_EnableWP_Operation_Success, "Info_EnableWP_Operation_Success", "Enable erase and program protection successfully!"},
    {Info_DisableWP_Operation_Success, "Info_DisableWP_Operation_Success", "Disable erase and program protection successfully!"},
    {Info_EnableRP_Operation_Success, "Info_EnableRP_Operation_Success", "Enable access protection successfully!"},
    {Info_DisableRP_Operation_Success, "Info_DisableRP_Operation_Success", "Disable access protection successfully!"},
    {Info_Progress_Operation_Cancel, "Info_Progress_Operation_Cancel", "Operation has been canceled!"},
    {Info_Progress_Running, "Info_Progress_Running", "Running..."},
    {Info_Operation_Erase, "Info_Operation_Erase", "Erase"},
    {Info_Operation_Download, "Info_Operation_Download", "Download"},
    {Info_Operation_Verify, "Info_Operation_Verify", "Verify"},
    {Info_Operation_Upload, "Info_Operation_Upload", "Upload"},
    {Info_Operation_FAP_E, "Info_Operation_FAP_E", "Enable access protection"},
    {Info_Operation_FAP_D, "Info_Operation_FAP_D", "Disable access protection"},
    {Info_Operation_EPP_E, "Info_Operation_EPP_E", "Enable erase and program protection"},
    {Info_Operation_EPP_D, "Info_Operation_EPP_D", "Disable erase and program protection"},
    {Info_Operation_FWCRC, "Info_Operation_FWCRC", "Firmware CRC Check"},
    {Info_Operation_FlashCRC, "Info_Operation_FlashCRC", "Flash CRC calculate"},
    {Info_Operation_ENBANK3, "Info_Operation_ENBANK3", "Enable Bank3"},
    {Info_Operation_WRITESN, "Info_Operation_WRITESN", "Write serial number"},
    {Info_Operation_WRITEUSERSYSTEMDATA, "Info_Operation_WRITEUSERSYSTEMDATA", "Write user system data file"},
    {Info_Operation_EnableSlib, "Info_Operation_EnableSlib", "Enable sLib"},
    {Info_Operation_DisableSlib, "Info_Operation_DisableSlib", "Disable sLib"},
    {Info_Wait, "Info_Wait", "Wait the device answer."},
    {Info_FlashStatus_FAP_Readable, "Info_FlashStatus_FAP_Readable", "Target is readable. Please click \"Next\" to proceed."},
    {Info_FlashStatus_FAP_Warning, "Info_FlashStatus_FAP_Warning", "The device is access protection,and the device will limit the use of some functions."},
    {Info_FlashStatus_FAP_Error, "Info_FlashStatus_FAP_Error", "Can't get the device status."},
    {Info_FlashStatus_FAP_Warning2, "Info_FlashStatus_FAP_Warning2", "The device is access protection,unable to operate."},
    {Info_FlashStatus_RDUP_Success, "Info_FlashStatus_RDUP_Success", "Disable access protection successfully!"},
    {Info_FlashStatus_RDUP_Fail, "Info_FlashStatus_RDUP_Fail", "Disable access protection failed!"},
    {Info_DeviceInfo_Bank3Size_error, "Info_DeviceInfo_Bank3Size_error", "SPIM size error"},
    {Info_DeviceInfo_Bank3FLASHDA_error, "Info_DeviceInfo_Bank3FLASHDA_error", "SPIM FLASH_DA error, cannot exceed the SPIM size."},
    {Info_Operation_Erase_Sector, "Info_Operation_Erase_Sector", "Please select sectors to be erased!"},
    {Info_Operation_Erase_Block, "Info_Operation_Erase_Block", "Please select blocks to be erased!"},
    {Info_Operation_Download_Addr, "Info_Operation_Download_Addr", "Invalid download address!"},
    {Info_Operation_Download_File, "Info_Operation_Download_File", "Please select download file!"},
    {Info_Operation_UserSystemData_File, "Info_Operation_UserSystemData_File", "Please select user system data file!"},
    {Info_FAP_Jump_Error, "Info_FAP_Jump_Error", "\"Enable Access protection after Download\" or \"Apply user system data\" will enable access protection, cannot use \"Jump to the user program\"."},
    {Info_FAP_Conflict_Error, "Info_FAP_Conflict_Error", "\"Enable Access protection after Download\" and \"Apply user system data\" do not enable access protection at the same time."},
    {Info_Operation_Upload_File, "Info_Operation_Upload_File", "Please select upload file!"},
    {Info_Operation_EPP_Sector, "Info_Operation_EPP_Sector", "Please select sectors to be erase and program protected!"},
    {Info_Operation_FWCRC_File, "Info_Operation_FWCRC_File", "Please select Firmware file!"},
    {Info_FWCRC_CheckSucceed, "Info_FWCRC_CheckSucceed", "Firmware CRC check succeed!"},
    {Info_UserSystemData_Operation_Succeed, "Info_UserSystemData_Operation_Succeed", "Operation succeed!"},
    {Info_UserSystemData_Operation_Failed, "Info_UserSystemData_Operation_Failed", "Operation check failed!"},
    {Info_UserSystemData_Save_Succeed, "Info_UserSystemData_Save_Succeed", "Save succeed!"},
    {Info_UserSystemData_Save_Failed, "Info_UserSystemData_Save_Failed", "Save failed!"},
    {Info_Erase_Operation_InsLib_Success, "Info_Erase_Operation_InsLib_Success", "Erase successfully! sLib area not erased."},
    {Info_Progress_Verify_Failed, "Info_Progress_Verify_Failed", "Verify failed!"},
    {Info_Operation_RP_D_Message, "Info_Operation_RP_D_Message", "The flash memory will be mass erased and all contents will be lost ,Are you sure to disable the access protection?"},
    {Info_Operation_WP_D_Message, "Info_Operation_WP_D_Message", "Are you sure to disable the erase and program protection?"},
    {Info_Operation_RP_E_Message, "Info_Operation_RP_E_Message", "Are you sure to enable the access protection?"},
    {Info_Operation_WP_E_Message, "Info_Operation_WP_E_Message", "Are you sure to enable the erase and program protection?"},
    {Disconnect_Error_Info, "Disconnect_Error_Info", "Device has disconnected" "\xA1\xA3"},
    {No_Flash_Error_Info, "No_Flash_Error_Info", "Can't get the info of flash" "\xA1\xA3"},
    {Connt_OpenMapTable_Error_Info, "Connt_OpenMapTable_Error_Info", "Device is invalid or can't open the ZVmap table of device" "\xA1\xA3"},
    {MultiPort_InitDevice_Info, "MultiPort_InitDevice_Info", "Initializing..."},
    {Download_Erase_Block_Option_Info, "Download_Erase_Block_Option_Info", "Erase the blocks of file size"},
    {Download_Erase_No_Option_Info, "Download_Erase_No_Option_Info", "No Erase"},
    {Download_Erase_Global_Option_Info, "Download_Erase_Global_Option_Info", "Global Erase"},
    {Info_Operation_SRP_E_Warning_Message, "Info_Operation_SRP_E_Warning_Message", "Are you sure to enable the senior access protection? This MCU can only be set once and will never be disabled after setting."},
    {Protection_Selection_Error_Info, "Protection_Selection_Error_Info", "Selection error" "\xA3\xA1"},
};

const Message withoutText[] = {
    {Info_No_DFUDevice, "Info_No_DFUDevice", "Info_No_DFUDevice"},
    {Info_DFU_AlreadyOpen, "Info_DFU_AlreadyOpen", "Info_DFU_AlreadyOpen"},
    {Info_DFU_CantOpen, "Info_DFU_CantOpen", "Info_DFU_CantOpen"},
    {Info_DFU_SendFail, "Info_DFU_SendFail", "Info_DFU_SendFail"},
    {Info_DFU_ReadFail, "Info_DFU_ReadFail", "Info_DFU_ReadFail"},
    {Info_DFU_AccessProtect, "Info_DFU_AccessProtect", "Info_DFU_AccessProtect"},
    {Info_DFU_CommunicationFail, "Info_DFU_CommunicationFail", "Info_DFU_CommunicationFail"},
    {Info_DFU_NotDFUMode, "Info_DFU_NotDFUMode", "Info_DFU_NotDFUMode"},
    {Info_DFU_TransferSizeError, "Info_DFU_TransferSizeError", "Info_DFU_TransferSizeError"},
    {Info_DFU_StateError, "Info_DFU_StateError", "Info_DFU_StateError"},
    {Info_DFU_StatusError_Target, "Info_DFU_StatusError_Target", "Info_DFU_StatusError_Target"},
    {Info_DFU_StatusError_File, "Info_DFU_StatusError_File", "Info_DFU_StatusError_File"},
    {Info_DFU_StatusError_Write, "Info_DFU_StatusError_Write", "Info_DFU_StatusError_Write"},
    {Info_DFU_StatusError_Erase, "Info_DFU_StatusError_Erase", "Info_DFU_StatusError_Erase"},
    {Info_DFU_StatusError_CheckErase, "Info_DFU_StatusError_CheckErase", "Info_DFU_StatusError_CheckErase"},
    {Info_DFU_StatusError_Prog, "Info_DFU_StatusError_Prog", "Info_DFU_StatusError_Prog"},
    {Info_DFU_StatusError_Verify, "Info_DFU_StatusError_Verify", "Info_DFU_StatusError_Verify"},
    {Info_DFU_StatusError_Address, "Info_DFU_StatusError_Address", "Info_DFU_StatusError_Address"},
    {Info_DFU_StatusError_Notdone, "Info_DFU_StatusError_Notdone", "Info_DFU_StatusError_Notdone"},
    {Info_DFU_StatusError_Firmware, "Info_DFU_StatusError_Firmware", "Info_DFU_StatusError_Firmware"},
    {Info_DFU_StatusError_Vendeor, "Info_DFU_StatusError_Vendeor", "Info_DFU_StatusError_Vendeor"},
    {Info_DFU_StatusError_Usbr, "Info_DFU_StatusError_Usbr", "Info_DFU_StatusError_Usbr"},
    {Info_DFU_StatusError_Por, "Info_DFU_StatusError_Por", "Info_DFU_StatusError_Por"},
    {Info_DFU_StatusError_Unknown, "Info_DFU_StatusError_Unknown", "Info_DFU_StatusError_Unknown"},
    {Info_DFU_StatusError_Stalledpkt, "Info_DFU_StatusError_Stalledpkt", "Info_DFU_StatusError_Stalledpkt"},
    {Info_SLIB_HASBEEN_ENABLE_ERROR, "Info_SLIB_HASBEEN_ENABLE_ERROR", "Info_SLIB_HASBEEN_ENABLE_ERROR"},
    {Info_SLIB_STARTSECTOR_ERROR, "Info_SLIB_STARTSECTOR_ERROR", "Info_SLIB_STARTSECTOR_ERROR"},
    {Info_SLIB_STARTDATASECTOR_ERROR, "Info_SLIB_STARTDATASECTOR_ERROR", "Info_SLIB_STARTDATASECTOR_ERROR"},
    {Info_SLIB_ENDSECTOR_ERROR, "Info_SLIB_ENDSECTOR_ERROR", "Info_SLIB_ENDSECTOR_ERROR"},
    {Info_SLIB_PASSWORD_ERROR, "Info_SLIB_PASSWORD_ERROR", "Info_SLIB_PASSWORD_ERROR"},
    {Info_Slib_DownloadFile_Sector_InSlib, "Info_Slib_DownloadFile_Sector_InSlib", "Info_Slib_DownloadFile_Sector_InSlib"},
    {ZV403A_EOPB0_Notset_Info, "ZV403A_EOPB0_Notset_Info", "ZV403A_EOPB0_Notset_Info"},
    {MultiPort_OpenCom_Failed_Info, "MultiPort_OpenCom_Failed_Info", "MultiPort_OpenCom_Failed_Info"},
    {MultiPort_UnknownError_Info, "MultiPort_UnknownError_Info", "MultiPort_UnknownError_Info"},
    {MultiPort_ConnectFailed_Info, "MultiPort_ConnectFailed_Info", "MultiPort_ConnectFailed_Info"},
    {MultiPort_InitDeviceFailed_Info, "MultiPort_InitDeviceFailed_Info", "MultiPort_InitDeviceFailed_Info"},
    {MultiPort_OperationCanceled_Info, "MultiPort_OperationCanceled_Info", "MultiPort_OperationCanceled_Info"},
    {MultiPort_OperationSuccess_Info, "MultiPort_OperationSuccess_Info", "MultiPort_OperationSuccess_Info"},
    {MultiPort_OperationSuccess_FreeDown_Info, "MultiPort_OperationSuccess_FreeDown_Info", "MultiPort_OperationSuccess_FreeDown_Info"},
    {MultiPort_DownLoading_Info, "MultiPort_DownLoading_Info", "MultiPort_DownLoading_Info"},
    {MultiPort_NeedReconnect_Info, "MultiPort_NeedReconnect_Info", "MultiPort_NeedReconnect_Info"},
    {MultiPort_DownLoadOptionFailed_Info, "MultiPort_DownLoadOptionFailed_Info", "MultiPort_DownLoadOptionFailed_Info"},
    {MultiPort_DownLoadOptionSuccess_Info, "MultiPort_DownLoadOptionSuccess_Info", "MultiPort_DownLoadOptionSuccess_Info"},
    {MultiPort_DeviceListNull_Info, "MultiPort_DeviceListNull_Info", "MultiPort_DeviceListNull_Info"},
    {MultiPort_DeviceListNotChoose_Info, "MultiPort_DeviceListNotChoose_Info", "MultiPort_DeviceListNotChoose_Info"},
    {MultiPort_DeviceListNotIni_Info, "MultiPort_DeviceListNotIni_Info", "MultiPort_DeviceListNotIni_Info"},
    {MultiPort_SectorDiffrent_Info, "MultiPort_SectorDiffrent_Info", "MultiPort_SectorDiffrent_Info"},
    {MultiPort_DeviceNoSlib_Info, "MultiPort_DeviceNoSlib_Info", "MultiPort_DeviceNoSlib_Info"},
    {MultiPort_SectorSizeDiffrent_Info, "MultiPort_SectorSizeDiffrent_Info", "MultiPort_SectorSizeDiffrent_Info"},
    {MultiPort_DeviceDiffrent_Info, "MultiPort_DeviceDiffrent_Info", "MultiPort_DeviceDiffrent_Info"},
    {Messagebox_Warning_Info, "Messagebox_Warning_Info", "Messagebox_Warning_Info"},
    {Messagebox_Confirm_Info, "Messagebox_Confirm_Info", "Messagebox_Confirm_Info"},
    {Messagebox_Error_Info, "Messagebox_Error_Info", "Messagebox_Error_Info"},
    {Bank3_Size_Info, "Bank3_Size_Info", "Bank3_Size_Info"},
    {Input_Null_Info, "Input_Null_Info", "Input_Null_Info"},
    {SPIMName_Same_Info, "SPIMName_Same_Info", "SPIMName_Same_Info"},
    {SPIMType_NoChoose_Info, "SPIMType_NoChoose_Info", "SPIMType_NoChoose_Info"},
    {SPIM_Autodetect_Failed_Info, "SPIM_Autodetect_Failed_Info", "SPIM_Autodetect_Failed_Info"},
    {SPIM_Cannot_Delete_Info, "SPIM_Cannot_Delete_Info", "SPIM_Cannot_Delete_Info"},
    {SPIM_Autodetect_Info, "SPIM_Autodetect_Info", "SPIM_Autodetect_Info"},
    {Bank3_FLASHDA_Error_Info, "Bank3_FLASHDA_Error_Info", "Bank3_FLASHDA_Error_Info"},
    {SN_Addr_Invalid_Info, "SN_Addr_Invalid_Info", "SN_Addr_Invalid_Info"},
    {File_Addr_Invalid_Info, "File_Addr_Invalid_Info", "File_Addr_Invalid_Info"},
    {Not_UserBank3_Info, "Not_UserBank3_Info", "Not_UserBank3_Info"},
    {NOSPIM_Type_Info, "NOSPIM_Type_Info", "NOSPIM_Type_Info"},
    {Bank3_FlashDA_not4BytesError_Info, "Bank3_FlashDA_not4BytesError_Info", "Bank3_FlashDA_not4BytesError_Info"},
    {Info_Operation_Upload_Sector, "Info_Operation_Upload_Sector", "Info_Operation_Upload_Sector"},
    {Info_Disable, "Info_Disable", "Info_Disable"},
    {Info_Enable, "Info_Enable", "Info_Enable"},
    {Info_AccessProtect, "Info_AccessProtect", "Info_AccessProtect"},
    {Info_EraseProgramProtect, "Info_EraseProgramProtect", "Info_EraseProgramProtect"},
    {Info_NO_DFU_DEVICE, "Info_NO_DFU_DEVICE", "Info_NO_DFU_DEVICE"},
    {Info_OPEN_DFU_DEVICE, "Info_OPEN_DFU_DEVICE", "Info_OPEN_DFU_DEVICE"},
    {Info_OPEN_COM_DEVICE, "Info_OPEN_COM_DEVICE", "Info_OPEN_COM_DEVICE"},
    {Info_DFU_ColunmHeader2_Text, "Info_DFU_ColunmHeader2_Text", "Info_DFU_ColunmHeader2_Text"},
    {Info_USART_ColunmHeader2_Text, "Info_USART_ColunmHeader2_Text", "Info_USART_ColunmHeader2_Text"},
    {Info_DFU_Buttonfree_MulutiDevice, "Info_DFU_Buttonfree_MulutiDevice", "Info_DFU_Buttonfree_MulutiDevice"},
    {Info_NoDeviceMap_SaveProject, "Info_NoDeviceMap_SaveProject", "Info_NoDeviceMap_SaveProject"},
    {Info_Success_SaveProject, "Info_Success_SaveProject", "Info_Success_SaveProject"},
    {Info_Success_OpenProject, "Info_Success_OpenProject", "Info_Success_OpenProject"},
    {Info_Failed_OpenProject, "Info_Failed_OpenProject", "Info_Failed_OpenProject"},
    {Info_Failed_OpenProject_DeviceMismatch, "Info_Failed_OpenProject_DeviceMismatch", "Info_Failed_OpenProject_DeviceMismatch"},
    {Info_Failed_Project_DeviceMismatch, "Info_Failed_Project_DeviceMismatch", "Info_Failed_Project_DeviceMismatch"},
    {Info_UserSystemData_Invalid, "Info_UserSystemData_Invalid", "Info_UserSystemData_Invalid"},
    {Info_ProjectOperation_error, "Info_ProjectOperation_error", "Info_ProjectOperation_error"},
    {Info_ProjectName_Null_error, "Info_ProjectName_Null_error", "Info_ProjectName_Null_error"},
    {Info_Enter_ProjectMode_Info, "Info_Enter_ProjectMode_Info", "Info_Enter_ProjectMode_Info"},
    {Info_Slib_Disable_Password_Null, "Info_Slib_Disable_Password_Null", "Info_Slib_Disable_Password_Null"},
    {Info_Slib_Enable_Password_Null, "Info_Slib_Enable_Password_Null", "Info_Slib_Enable_Password_Null"},
    {Info_Slib_Password_Null, "Info_Slib_Password_Null", "Info_Slib_Password_Null"},
    {Info_Slib_Password_InputError, "Info_Slib_Password_InputError", "Info_Slib_Password_InputError"},
    {Info_SLIB_SECTOR_ERROR, "Info_SLIB_SECTOR_ERROR", "Info_SLIB_SECTOR_ERROR"},
    {Info_SLIB_BEGINSECTOR_MESSAGE1, "Info_SLIB_BEGINSECTOR_MESSAGE1", "Info_SLIB_BEGINSECTOR_MESSAGE1"},
    {Info_SLIB_BEGINSECTOR_MESSAGE2, "Info_SLIB_BEGINSECTOR_MESSAGE2", "Info_SLIB_BEGINSECTOR_MESSAGE2"},
    {Info_SLIB_BEGINSECTOR_MESSAGE3, "Info_SLIB_BEGINSECTOR_MESSAGE3", "Info_SLIB_BEGINSECTOR_MESSAGE3"},
    {Info_Slib_Status_Null, "Info_Slib_Status_Null", "Info_Slib_Status_Null"},
    {Info_Slib_Hasbeen_Disable, "Info_Slib_Hasbeen_Disable", "Info_Slib_Hasbeen_Disable"},
    {Info_Sector_Select_Error1, "Info_Sector_Select_Error1", "Info_Sector_Select_Error1"},
    {Info_Slib_Enable_Compare_Error1, "Info_Slib_Enable_Compare_Error1", "Info_Slib_Enable_Compare_Error1"},
    {Info_Slib_Enable_Compare_Error2, "Info_Slib_Enable_Compare_Error2", "Info_Slib_Enable_Compare_Error2"},
    {Info_Slib_No_Erase, "Info_Slib_No_Erase", "Info_Slib_No_Erase"},
    {Info_Slib_OperateSector_InSlib, "Info_Slib_OperateSector_InSlib", "Info_Slib_OperateSector_InSlib"},
    {Info_SN_Null_Error, "Info_SN_Null_Error", "Info_SN_Null_Error"},
    {MultiFile_Max_Number_Info, "MultiFile_Max_Number_Info", "MultiFile_Max_Number_Info"},
    {Isnot_Empty_Info, "Isnot_Empty_Info", "Isnot_Empty_Info"},
    {Input_HEX_Error_Info, "Input_HEX_Error_Info", "Input_HEX_Error_Info"},
    {MultiFile_Address_Same_Info, "MultiFile_Address_Same_Info", "MultiFile_Address_Same_Info"},
    {MultiFile_AddressSector_Same_Info, "MultiFile_AddressSector_Same_Info", "MultiFile_AddressSector_Same_Info"},
    {UserSystemData_WDOG_Open_Info, "UserSystemData_WDOG_Open_Info", "UserSystemData_WDOG_Open_Info"},
    {Info_FAP_Enable, "Info_FAP_Enable", "Info_FAP_Enable"},
    {Info_FAP_Disable, "Info_FAP_Disable", "Info_FAP_Disable"},
    {Info_FAP_Enable_Level1, "Info_FAP_Enable_Level1", "Info_FAP_Enable_Level1"},
    {Info_FAP_Enable_Level2, "Info_FAP_Enable_Level2", "Info_FAP_Enable_Level2"},
    {File_Empty_Error_Info, "File_Empty_Error_Info", "File_Empty_Error_Info"},
    {Download_FAPConflict_Error_Info, "Download_FAPConflict_Error_Info", "Download_FAPConflict_Error_Info"},
    {Senior_Protection_Info, "Senior_Protection_Info", "Senior_Protection_Info"},
    {ISP_New_Version_Info, "ISP_New_Version_Info", "ISP_New_Version_Info"},
    {ISP_Download_Success_Info, "ISP_Download_Success_Info", "ISP_Download_Success_Info"},
    {ISP_Download_Failed_Info, "ISP_Download_Failed_Info", "ISP_Download_Failed_Info"},
    {ISP_Multiport_New_Version_Info, "ISP_Multiport_New_Version_Info", "ISP_Multiport_New_Version_Info"},
    {ISP_Multiport_Download_Success_Info, "ISP_Multiport_Download_Success_Info", "ISP_Multiport_Download_Success_Info"},
    {ISP_Multiport_Download_Failed_Info, "ISP_Multiport_Download_Failed_Info", "ISP_Multiport_Download_Failed_Info"},
    {Info_FlashCRC_SectorSelect_Error, "Info_FlashCRC_SectorSelect_Error", "Info_FlashCRC_SectorSelect_Error"},
    {Info_FlashCRC_Flash_SPIM_Error, "Info_FlashCRC_Flash_SPIM_Error", "Info_FlashCRC_Flash_SPIM_Error"},
    {Info_FlashCRC_Slib_Confirm, "Info_FlashCRC_Slib_Confirm", "Info_FlashCRC_Slib_Confirm"},
    {CRC_inSlibOrOtherArea_MixedError_Info, "CRC_inSlibOrOtherArea_MixedError_Info", "CRC_inSlibOrOtherArea_MixedError_Info"},
    {CRC_F413MainFlash_MaxLeng_Warning_Info, "CRC_F413MainFlash_MaxLeng_Warning_Info", "CRC_F413MainFlash_MaxLeng_Warning_Info"},
    {OTP2_Key_SPIM_Name_Info, "OTP2_Key_SPIM_Name_Info", "OTP2_Key_SPIM_Name_Info"},
    {OTP2_Key_QSPI_Name_Info, "OTP2_Key_QSPI_Name_Info", "OTP2_Key_QSPI_Name_Info"},
    {Download_Erase_Sector_Option_Info, "Download_Erase_Sector_Option_Info", "Download_Erase_Sector_Option_Info"},
};
// clang-format on

TEST(ResultMessages, EveryKeyHasExactlyItsText) {
    for (const Message &message : withText) {
        EXPECT_EQ(message.text, message.expected) << message.key;
        EXPECT_NE(message.text, message.key);
    }
}

TEST(ResultMessages, AKeyWithoutATextPrintsAsItself) {
    for (const Message &message : withoutText) {
        EXPECT_EQ(message.text, message.expected) << message.key;
    }
}

TEST(ResultMessages, ThereAre218KeysAnd130OfThemAreTheirText) {
    std::set<std::string> keys;
    for (const Message &message : withText) {
        keys.insert(message.key);
    }
    EXPECT_EQ(keys.size(), 88u);
    for (const Message &message : withoutText) {
        keys.insert(message.key);
    }
    EXPECT_EQ(keys.size(), 218u);
}

TEST(ResultMessages, FourTextsEndInTwoRawBytes) {
    EXPECT_EQ(std::string(Disconnect_Error_Info).substr(23), "\xA1\xA3");
    EXPECT_EQ(std::string(No_Flash_Error_Info).substr(27), "\xA1\xA3");
    EXPECT_EQ(std::string(Connt_OpenMapTable_Error_Info).substr(57), "\xA1\xA3");
    EXPECT_EQ(std::string(Protection_Selection_Error_Info).substr(15), "\xA3\xA1");
}

} // namespace

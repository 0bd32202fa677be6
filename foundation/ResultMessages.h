#pragma once

// The message table: every text that the system prints by name, complete before anything runs and in
// no encoding of its own (raw bytes).

// MEANT: 130 keys have no text but themselves, and the bare key is what a user reads; scripts match it.
#define TEXT_IS_KEY(key) inline constexpr char key[] = #key

// Texts of result codes.
inline constexpr char Info_Success[] = "Info Success";
inline constexpr char Info_UnknownError[] = "Unknown error!";
inline constexpr char Info_Com_NotOpen[] = "Serial port hasn't been opened yet!";
inline constexpr char Info_Com_AlreadyOpen[] = "Serial port already opened!";
inline constexpr char Info_Com_CantOpen[] = "Failed to open serial port!";
inline constexpr char Info_Com_SendFail[] = "send over serial port fail!";
inline constexpr char Info_NoResponse[] = "No response from the device...\n"
                                          "Please verify the boot mode configuration.\n"
                                          "Check the UART cable.\n"
                                          "Reset the device then run again.";
inline constexpr char Info_UnRecognizedDevice[] = "Unrecognized device...\nPlease, reset your device then try again.";
inline constexpr char Info_AccessProtection[] = "The device is access protection!";
inline constexpr char Info_EraseProgramProtection[] = "The device is erase and program protection!";
inline constexpr char Info_CMDNotAllowed[] = "The cmd not allowed!";
inline constexpr char Info_Program_InputParamsError[] = "Input parameters error!";
inline constexpr char Info_Program_VerifyDataNotMatching[] = "Verify failed. Data not matching...";
inline constexpr char Info_Files_Empty[] = "File is empty!";
inline constexpr char Info_Files_BadSuffex[] = "File bad suffex!";
inline constexpr char Info_Files_UNABLETOOPENTEMPFILE[] = "Cannot open temporary file!";
inline constexpr char Info_Files_UNABLETOOPENFILE[] = "Cannot open file!";
inline constexpr char Info_Files_BADFORMAT[] = "File's format error!";
inline constexpr char Info_Files_BADADDRESSRANGE[] = "File's bad address range!";
inline constexpr char Info_Files_BADPARAMETER[] = "File's bad paramer!";
inline constexpr char Info_Files_NOTOPEN[] = "File not open!";
inline constexpr char Info_Files_SETELEMENTFULL[] = "Cannot open file!";
inline constexpr char Info_FWCRC_CheckFailed[] = "Firmware CRC check failed!";

// Progress and completion lines, and the display names of the jobs.
inline constexpr char Info_Progress_Operation_Success[] = "Operation finished successfully!";
inline constexpr char Info_Download_Operation_Success[] = "Download successfully!";
inline constexpr char Info_FWCRC_Operation_Success[] = "Firmware CRC check successfully!";
inline constexpr char Info_Erase_Operation_Success[] = "Erase successfully!";
inline constexpr char Info_Upload_Operation_Success[] = "Upload successfully!";
inline constexpr char Info_EnableWP_Operation_Success[] = "Enable erase and program protection successfully!";
inline constexpr char Info_DisableWP_Operation_Success[] = "Disable erase and program protection successfully!";
inline constexpr char Info_EnableRP_Operation_Success[] = "Enable access protection successfully!";
inline constexpr char Info_DisableRP_Operation_Success[] = "Disable access protection successfully!";
inline constexpr char Info_Progress_Operation_Cancel[] = "Operation has been canceled!";
inline constexpr char Info_Progress_Running[] = "Running...";
inline constexpr char Info_Operation_Erase[] = "Erase";
inline constexpr char Info_Operation_Download[] = "Download";
inline constexpr char Info_Operation_Verify[] = "Verify";
inline constexpr char Info_Operation_Upload[] = "Upload";
inline constexpr char Info_Operation_FAP_E[] = "Enable access protection";
inline constexpr char Info_Operation_FAP_D[] = "Disable access protection";
inline constexpr char Info_Operation_EPP_E[] = "Enable erase and program protection";
inline constexpr char Info_Operation_EPP_D[] = "Disable erase and program protection";
inline constexpr char Info_Operation_FWCRC[] = "Firmware CRC Check";
inline constexpr char Info_Operation_FlashCRC[] = "Flash CRC calculate";
inline constexpr char Info_Operation_ENBANK3[] = "Enable Bank3";
inline constexpr char Info_Operation_WRITESN[] = "Write serial number";
inline constexpr char Info_Operation_WRITEUSERSYSTEMDATA[] = "Write user system data file";
inline constexpr char Info_Operation_EnableSlib[] = "Enable sLib";
inline constexpr char Info_Operation_DisableSlib[] = "Disable sLib";

// The rest of the shared vocabulary. Four texts end in two raw bytes of a double-byte encoding.
inline constexpr char Info_Wait[] = "Wait the device answer.";
inline constexpr char Info_FlashStatus_FAP_Readable[] = "Target is readable. Please click \"Next\" to proceed.";
inline constexpr char Info_FlashStatus_FAP_Warning[] =
    "The device is access protection,and the device will limit the use of some functions.";
inline constexpr char Info_FlashStatus_FAP_Error[] = "Can't get the device status.";
inline constexpr char Info_FlashStatus_FAP_Warning2[] = "The device is access protection,unable to operate.";
inline constexpr char Info_FlashStatus_RDUP_Success[] = "Disable access protection successfully!";
inline constexpr char Info_FlashStatus_RDUP_Fail[] = "Disable access protection failed!";
inline constexpr char Info_DeviceInfo_Bank3Size_error[] = "SPIM size error";
inline constexpr char Info_DeviceInfo_Bank3FLASHDA_error[] = "SPIM FLASH_DA error, cannot exceed the SPIM size.";
inline constexpr char Info_Operation_Erase_Sector[] = "Please select sectors to be erased!";
inline constexpr char Info_Operation_Erase_Block[] = "Please select blocks to be erased!";
inline constexpr char Info_Operation_Download_Addr[] = "Invalid download address!";
inline constexpr char Info_Operation_Download_File[] = "Please select download file!";
inline constexpr char Info_Operation_UserSystemData_File[] = "Please select user system data file!";
inline constexpr char Info_FAP_Jump_Error[] =
    "\"Enable Access protection after Download\" or \"Apply user system data\" will enable access protection, "
    "cannot use \"Jump to the user program\".";
inline constexpr char Info_FAP_Conflict_Error[] =
    "\"Enable Access protection after Download\" and \"Apply user system data\" do not enable access "
    "protection at the same time.";
inline constexpr char Info_Operation_Upload_File[] = "Please select upload file!";
inline constexpr char Info_Operation_EPP_Sector[] = "Please select sectors to be erase and program protected!";
inline constexpr char Info_Operation_FWCRC_File[] = "Please select Firmware file!";
inline constexpr char Info_FWCRC_CheckSucceed[] = "Firmware CRC check succeed!";
inline constexpr char Info_UserSystemData_Operation_Succeed[] = "Operation succeed!";
inline constexpr char Info_UserSystemData_Operation_Failed[] = "Operation check failed!";
inline constexpr char Info_UserSystemData_Save_Succeed[] = "Save succeed!";
inline constexpr char Info_UserSystemData_Save_Failed[] = "Save failed!";
inline constexpr char Info_Erase_Operation_InsLib_Success[] = "Erase successfully! sLib area not erased.";
inline constexpr char Info_Progress_Verify_Failed[] = "Verify failed!";
inline constexpr char Info_Operation_RP_D_Message[] =
    "The flash memory will be mass erased and all contents will be lost ,Are you sure to disable the access "
    "protection?";
inline constexpr char Info_Operation_WP_D_Message[] = "Are you sure to disable the erase and program protection?";
inline constexpr char Info_Operation_RP_E_Message[] = "Are you sure to enable the access protection?";
inline constexpr char Info_Operation_WP_E_Message[] = "Are you sure to enable the erase and program protection?";
inline constexpr char Disconnect_Error_Info[] = "Device has disconnected"
                                                "\xA1\xA3";
inline constexpr char No_Flash_Error_Info[] = "Can't get the info of flash"
                                              "\xA1\xA3";
inline constexpr char Connt_OpenMapTable_Error_Info[] = "Device is invalid or can't open the ZVmap table of device"
                                                        "\xA1\xA3";
inline constexpr char MultiPort_InitDevice_Info[] = "Initializing...";
inline constexpr char Download_Erase_Block_Option_Info[] = "Erase the blocks of file size";
inline constexpr char Download_Erase_No_Option_Info[] = "No Erase";
inline constexpr char Download_Erase_Global_Option_Info[] = "Global Erase";
inline constexpr char Info_Operation_SRP_E_Warning_Message[] =
    "Are you sure to enable the senior access protection? This MCU can only be set once and will never be "
    "disabled after setting.";
inline constexpr char Protection_Selection_Error_Info[] = "Selection error"
                                                          "\xA3\xA1";

// Keys of result codes that print as themselves.
TEXT_IS_KEY(Info_No_DFUDevice);
TEXT_IS_KEY(Info_DFU_AlreadyOpen);
TEXT_IS_KEY(Info_DFU_CantOpen);
TEXT_IS_KEY(Info_DFU_SendFail);
TEXT_IS_KEY(Info_DFU_ReadFail);
TEXT_IS_KEY(Info_DFU_AccessProtect);
TEXT_IS_KEY(Info_DFU_CommunicationFail);
TEXT_IS_KEY(Info_DFU_NotDFUMode);
TEXT_IS_KEY(Info_DFU_TransferSizeError);
TEXT_IS_KEY(Info_DFU_StateError);
TEXT_IS_KEY(Info_DFU_StatusError_Target);
TEXT_IS_KEY(Info_DFU_StatusError_File);
TEXT_IS_KEY(Info_DFU_StatusError_Write);
TEXT_IS_KEY(Info_DFU_StatusError_Erase);
TEXT_IS_KEY(Info_DFU_StatusError_CheckErase);
TEXT_IS_KEY(Info_DFU_StatusError_Prog);
TEXT_IS_KEY(Info_DFU_StatusError_Verify);
TEXT_IS_KEY(Info_DFU_StatusError_Address);
TEXT_IS_KEY(Info_DFU_StatusError_Notdone);
TEXT_IS_KEY(Info_DFU_StatusError_Firmware);
TEXT_IS_KEY(Info_DFU_StatusError_Vendeor);
TEXT_IS_KEY(Info_DFU_StatusError_Usbr);
TEXT_IS_KEY(Info_DFU_StatusError_Por);
TEXT_IS_KEY(Info_DFU_StatusError_Unknown);
TEXT_IS_KEY(Info_DFU_StatusError_Stalledpkt);
TEXT_IS_KEY(Info_SLIB_HASBEEN_ENABLE_ERROR);
TEXT_IS_KEY(Info_SLIB_STARTSECTOR_ERROR);
TEXT_IS_KEY(Info_SLIB_STARTDATASECTOR_ERROR);
TEXT_IS_KEY(Info_SLIB_ENDSECTOR_ERROR);
TEXT_IS_KEY(Info_SLIB_PASSWORD_ERROR);
TEXT_IS_KEY(Info_Slib_DownloadFile_Sector_InSlib);
TEXT_IS_KEY(ZV403A_EOPB0_Notset_Info);

// Other keys that print as themselves.
TEXT_IS_KEY(MultiPort_OpenCom_Failed_Info);
TEXT_IS_KEY(MultiPort_UnknownError_Info);
TEXT_IS_KEY(MultiPort_ConnectFailed_Info);
TEXT_IS_KEY(MultiPort_InitDeviceFailed_Info);
TEXT_IS_KEY(MultiPort_OperationCanceled_Info);
TEXT_IS_KEY(MultiPort_OperationSuccess_Info);
TEXT_IS_KEY(MultiPort_OperationSuccess_FreeDown_Info);
TEXT_IS_KEY(MultiPort_DownLoading_Info);
TEXT_IS_KEY(MultiPort_NeedReconnect_Info);
TEXT_IS_KEY(MultiPort_DownLoadOptionFailed_Info);
TEXT_IS_KEY(MultiPort_DownLoadOptionSuccess_Info);
TEXT_IS_KEY(MultiPort_DeviceListNull_Info);
TEXT_IS_KEY(MultiPort_DeviceListNotChoose_Info);
TEXT_IS_KEY(MultiPort_DeviceListNotIni_Info);
TEXT_IS_KEY(MultiPort_SectorDiffrent_Info);
TEXT_IS_KEY(MultiPort_DeviceNoSlib_Info);
TEXT_IS_KEY(MultiPort_SectorSizeDiffrent_Info);
TEXT_IS_KEY(MultiPort_DeviceDiffrent_Info);
TEXT_IS_KEY(Messagebox_Warning_Info);
TEXT_IS_KEY(Messagebox_Confirm_Info);
TEXT_IS_KEY(Messagebox_Error_Info);
TEXT_IS_KEY(Bank3_Size_Info);
TEXT_IS_KEY(Input_Null_Info);
TEXT_IS_KEY(SPIMName_Same_Info);
TEXT_IS_KEY(SPIMType_NoChoose_Info);
TEXT_IS_KEY(SPIM_Autodetect_Failed_Info);
TEXT_IS_KEY(SPIM_Cannot_Delete_Info);
TEXT_IS_KEY(SPIM_Autodetect_Info);
TEXT_IS_KEY(Bank3_FLASHDA_Error_Info);
TEXT_IS_KEY(SN_Addr_Invalid_Info);
TEXT_IS_KEY(File_Addr_Invalid_Info);
TEXT_IS_KEY(Not_UserBank3_Info);
TEXT_IS_KEY(NOSPIM_Type_Info);
TEXT_IS_KEY(Bank3_FlashDA_not4BytesError_Info);
TEXT_IS_KEY(Info_Operation_Upload_Sector);
TEXT_IS_KEY(Info_Disable);
TEXT_IS_KEY(Info_Enable);
TEXT_IS_KEY(Info_AccessProtect);
TEXT_IS_KEY(Info_EraseProgramProtect);
TEXT_IS_KEY(Info_NO_DFU_DEVICE);
TEXT_IS_KEY(Info_OPEN_DFU_DEVICE);
TEXT_IS_KEY(Info_OPEN_COM_DEVICE);
TEXT_IS_KEY(Info_DFU_ColunmHeader2_Text);
TEXT_IS_KEY(Info_USART_ColunmHeader2_Text);
TEXT_IS_KEY(Info_DFU_Buttonfree_MulutiDevice);
TEXT_IS_KEY(Info_NoDeviceMap_SaveProject);
TEXT_IS_KEY(Info_Success_SaveProject);
TEXT_IS_KEY(Info_Success_OpenProject);
TEXT_IS_KEY(Info_Failed_OpenProject);
TEXT_IS_KEY(Info_Failed_OpenProject_DeviceMismatch);
TEXT_IS_KEY(Info_Failed_Project_DeviceMismatch);
TEXT_IS_KEY(Info_UserSystemData_Invalid);
TEXT_IS_KEY(Info_ProjectOperation_error);
TEXT_IS_KEY(Info_ProjectName_Null_error);
TEXT_IS_KEY(Info_Enter_ProjectMode_Info);
TEXT_IS_KEY(Info_Slib_Disable_Password_Null);
TEXT_IS_KEY(Info_Slib_Enable_Password_Null);
TEXT_IS_KEY(Info_Slib_Password_Null);
TEXT_IS_KEY(Info_Slib_Password_InputError);
TEXT_IS_KEY(Info_SLIB_SECTOR_ERROR);
TEXT_IS_KEY(Info_SLIB_BEGINSECTOR_MESSAGE1);
TEXT_IS_KEY(Info_SLIB_BEGINSECTOR_MESSAGE2);
TEXT_IS_KEY(Info_SLIB_BEGINSECTOR_MESSAGE3);
TEXT_IS_KEY(Info_Slib_Status_Null);
TEXT_IS_KEY(Info_Slib_Hasbeen_Disable);
TEXT_IS_KEY(Info_Sector_Select_Error1);
TEXT_IS_KEY(Info_Slib_Enable_Compare_Error1);
TEXT_IS_KEY(Info_Slib_Enable_Compare_Error2);
TEXT_IS_KEY(Info_Slib_No_Erase);
TEXT_IS_KEY(Info_Slib_OperateSector_InSlib);
TEXT_IS_KEY(Info_SN_Null_Error);
TEXT_IS_KEY(MultiFile_Max_Number_Info);
TEXT_IS_KEY(Isnot_Empty_Info);
TEXT_IS_KEY(Input_HEX_Error_Info);
TEXT_IS_KEY(MultiFile_Address_Same_Info);
TEXT_IS_KEY(MultiFile_AddressSector_Same_Info);
TEXT_IS_KEY(UserSystemData_WDOG_Open_Info);
TEXT_IS_KEY(Info_FAP_Enable);
TEXT_IS_KEY(Info_FAP_Disable);
TEXT_IS_KEY(Info_FAP_Enable_Level1);
TEXT_IS_KEY(Info_FAP_Enable_Level2);
TEXT_IS_KEY(File_Empty_Error_Info);
TEXT_IS_KEY(Download_FAPConflict_Error_Info);
TEXT_IS_KEY(Senior_Protection_Info);
TEXT_IS_KEY(ISP_New_Version_Info);
TEXT_IS_KEY(ISP_Download_Success_Info);
TEXT_IS_KEY(ISP_Download_Failed_Info);
TEXT_IS_KEY(ISP_Multiport_New_Version_Info);
TEXT_IS_KEY(ISP_Multiport_Download_Success_Info);
TEXT_IS_KEY(ISP_Multiport_Download_Failed_Info);
TEXT_IS_KEY(Info_FlashCRC_SectorSelect_Error);
TEXT_IS_KEY(Info_FlashCRC_Flash_SPIM_Error);
TEXT_IS_KEY(Info_FlashCRC_Slib_Confirm);
TEXT_IS_KEY(CRC_inSlibOrOtherArea_MixedError_Info);
TEXT_IS_KEY(CRC_F413MainFlash_MaxLeng_Warning_Info);
TEXT_IS_KEY(OTP2_Key_SPIM_Name_Info);
TEXT_IS_KEY(OTP2_Key_QSPI_Name_Info);
TEXT_IS_KEY(Download_Erase_Sector_Option_Info);

#undef TEXT_IS_KEY

/*
 * Resource identifiers shared by the pre-scan module, the host's resource
 * library (qvCaptureRC.dll) and the tests.  Plain #defines only: the resource
 * compiler reads this file too.
 */
#ifndef QV_RESOURCE_IDS_H
#define QV_RESOURCE_IDS_H

/* ---- Templates and menu (resource library) ---- */
#define IDD_PRESCAN             12301
#define IDD_SCAN_OPTIONS        12302
#define IDR_PRESCAN_POPUP       12303
#define IDD_FILEOPENSAVE        "FILEOPENSAVE"

/* ---- Go-to popup commands ---- */
#define ID_GOTO_SCENE_START     12304
#define ID_GOTO_SCENE_END       12305

/* ---- Pre-scan dialog controls ---- */
#define IDC_COMMENT_EDIT        12306
#define IDC_TAPE_DESCRIPTION    12310
#define IDC_START_SCAN          12311
#define IDC_GOTO                12312
#define IDC_MARK_ALL            12313
#define IDC_SPLIT_SCENE         12314
#define IDC_MERGE_SCENES        12315
#define IDC_SCAN_OPTIONS        12316
#define IDC_SCENE_LIST          12317
#define IDC_OPEN_LIST           12318
#define IDC_SAVE_LIST           12319
#define IDC_TAPE_NAME           12320
#define IDC_SCAN_METHOD         12321
#define IDC_VIEW_MODE           12322
#define IDC_CAPTURE             12323
#define IDC_PREVIEW             12324
#define IDC_DELETE_SCENES       12325
#define IDC_CLEAR_ALL           12326
#define IDC_CLOSE_PRESCAN       12327
#define IDC_PREVIEW_VIDEO       12347
#define IDC_HELP_PRESCAN        6520

/* Command the dialog posts to itself once it is shown */
#define ID_CHECK_DEVICE         12339

/* ---- Scan options dialog controls ---- */
#define IDC_CAPTURE_FOLDER          12330
#define IDC_CAPTURE_NAME            12331
#define IDC_LIBRARY_FOLDER          12332
#define IDC_BROWSE_CAPTURE_FOLDER   12333
#define IDC_SAVE_TO_LIBRARY         12334
#define IDC_CHOOSE_LIBRARY          12335
#define IDC_WANT_INDEX_FILE         12336
#define IDC_QUICK_SCAN              12337
#define IDC_QUICK_SCAN_SPEED        12338
#define IDC_HELP_OPTIONS            6536

/* ---- Scene list file dialog extra area ("FILEOPENSAVE") ---- */
#define IDC_PSF_TAPE_NAME           12345
#define IDC_PSF_TAPE_DESCRIPTION    12346
#define IDC_PSF_HELP                6545

/* ---- Help contexts ---- */
#define HELP_CONTEXT_PRESCAN        6520
#define HELP_CONTEXT_OPTIONS        6536
#define HELP_CONTEXT_LIST_FILE      6545

/* ---- Strings (resource library) ---- */
#define IDS_LIST_FILE_FILTER        45502  /* "desc|*.psf|desc|*.*|" */
#define IDS_EMPTY_LIST              45503
#define IDS_SCAN_METHOD_1           45504
#define IDS_SCAN_METHOD_2           45505
#define IDS_SCAN_METHOD_3           45506
#define IDS_DEFAULT_LIST_NAME       45507
#define IDS_DEFAULT_CAPTURE_NAME    45508
#define IDS_DEFAULT_LIBRARY_FOLDER  45509
#define IDS_OPEN_LIST_TITLE         45510
#define IDS_SAVE_LIST_TITLE         45511
#define IDS_UNKNOWN_DATE            45512
#define IDS_STATE_SCANNING          45513
#define IDS_STATE_CAPTURING         45514
#define IDS_STATE_PREVIEW           45515
#define IDS_STATE_SEEKING           45516
#define IDS_STATE_SCAN_CAPTURE      45517
#define IDS_STATE_CLOSING           45518
#define IDS_COL_THUMBNAIL           45520
#define IDS_COL_IN                  45521
#define IDS_COL_OUT                 45522
#define IDS_COL_TIMES               45523
#define IDS_COL_COMMENT             45524
#define IDS_COL_DATE                45525
#define IDS_COL_FILES               45526
#define IDS_CAPTURED_FILE_PREFIX    45527
#define IDS_SCENE_FILE_PREFIX       45528
#define IDS_MODULE_TITLE            45529
#define IDS_UNMARK_ALL              45530
#define IDS_MARK_ALL                45531
#define IDS_BROWSE_FAILED           45550
#define IDS_ASK_CREATE_FOLDER       45551  /* %s = the folder */
#define IDS_FOLDER_NOT_CREATED      45552
#define IDS_ASK_SAVE_CHANGES        45553
#define IDS_ASK_DELETE_SCENES       45554
#define IDS_NAME_REQUIRED           45555
#define IDS_ASK_KEEP_LIST           45556
#define IDS_DEVICE_NOT_READY        45557
#define IDS_DEVICE_REASON_0         45558
#define IDS_DEVICE_REASON_1         45559
#define IDS_DEVICE_REASON_2         45560
#define IDS_DEVICE_REASON_3         45561
#define IDS_DEVICE_REASON_4         45562
#define IDS_DEVICE_REASON_5         45563
#define IDS_DEVICE_REASON_6         45564
#define IDS_DEVICE_REASON_7         45565
/* Refusals that keep fixed-size fields from being overrun */
#define IDS_TOO_MANY_SCENES         45570  /* %d = the largest count a list file holds */
#define IDS_CAPTURE_FOLDER_TOO_LONG 45571  /* %d = the longest allowed */
#define IDS_CAPTURE_NAME_TOO_LONG   45572  /* %d */
#define IDS_LIBRARY_FOLDER_TOO_LONG 45573  /* %d */
#define IDS_SAVE_FAILED             45574  /* %s = the file */

/* ---- Module bitmaps (qvPreScan.dll) ---- */
#define IDB_MARK_OFF            12401
#define IDB_MARK_ON             12402
#define IDB_VIEW_THUMBNAILS     12403
#define IDB_CAPTURE             12404
#define IDB_PREVIEW_PLAY        12405
#define IDB_PREVIEW_STOP        12406
#define IDB_VIEW_COMPACT        12407
#define IDB_GOTO                12408
#define IDB_MERGE               12409
#define IDB_SPLIT               12410

#endif /* QV_RESOURCE_IDS_H */

// Why a box of Windows did not open.
#pragma once

#define FNERR_INVALIDFILENAME 0x3002

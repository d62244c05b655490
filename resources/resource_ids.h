// Ids of the program's resources, shared by the resource script and the code.
#pragma once

#define IDS_CONFIRM_CLOSE 206

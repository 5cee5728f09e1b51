#pragma once

// everything stands in windows.h

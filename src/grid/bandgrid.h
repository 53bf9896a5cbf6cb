#pragma once

// The whole public interface of the grid control.
#include "bandgrid_global.h"
#include "bandheaderview.h"
#include "celldelegate.h"
#include "grid.h"
#include "gridcolumn.h"
#include "gridoptions.h"
#include "gridtheme.h"
#include "statusline.h"
#include "tableview.h"

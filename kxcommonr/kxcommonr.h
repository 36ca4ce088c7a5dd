// kxcommonr/kxcommonr.h
//
// The umbrella header: includes every public header of kxcommonr, so that
//   #include "kxcommonr/kxcommonr.h"
// is all a caller needs.
#ifndef KXCOMMONR_KXCOMMONR_H
#define KXCOMMONR_KXCOMMONR_H

#include "kxcommonr/config.h"

// Foundations
#include "kxcommonr/common/foundation/KXMV.h"
#include "kxcommonr/common/foundation/KXStatus.h"
#include "kxcommonr/common/foundation/KXPower.h"
#include "kxcommonr/common/foundation/KXExtremeNum.h"
#include "kxcommonr/common/containers/KXBitSet.h"
#include "kxcommonr/common/display/KXComponentDisplay.h"
#include "kxcommonr/common/vector/Blas1.h"
#include "kxcommonr/common/vector/KXMathFun.h"
#include "kxcommonr/common/containers/KXHashKey.h"
#include "kxcommonr/common/containers/KXPackedInt.h"

// Matrices
#include "kxcommonr/common/packed/KXPackedLayout.h"
#include "kxcommonr/common/symmatrix/KXSymMatrixData.h"
#include "kxcommonr/common/symmatrix/KXSymMatrix.h"
#include "kxcommonr/common/symmatrix/KXSymBlockMatrix.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrixData.h"
#include "kxcommonr/common/rectmatrix/KXRectMatrix.h"

// Distributions
#include "kxcommonr/common/dist/KXDistFun.h"

// Random numbers
#include "kxcommonr/common/sparse/KXSparseVector.h"
#include "kxcommonr/common/random/KXRandom.h"
#include "kxcommonr/common/random/KXRandomTwister.h"
#include "kxcommonr/common/random/KXURandom.h"
#include "kxcommonr/common/random/KXRandomValues.h"

// XML
#include "kxcommonr/xml/ExportFormat.h"
#include "kxcommonr/xml/XMLInterface.h"
#include "kxcommonr/xml/XMLAttribute.h"
#include "kxcommonr/xml/XMLDocType.h"
#include "kxcommonr/xml/XMLElement.h"
#include "kxcommonr/xml/XMLString.h"
#include "kxcommonr/xml/XMLObj.h"
#include "kxcommonr/xml/XMLWriter.h"
#include "kxcommonr/xml/XMLReader.h"
#include "kxcommonr/xml/XMLUReader.h"
#include "kxcommonr/records/RawData.h"
#include "kxcommonr/records/RawRecord.h"
#include "kxcommonr/records/IKXRecordIterator.h"
#include "kxcommonr/records/KXTextRecordIterator.h"
#include "kxcommonr/mtd/IOException.h"
#include "kxcommonr/mtd/IKXEncoder.h"
#include "kxcommonr/mtd/IKXVariable.h"
#include "kxcommonr/mtd/KXCategoryDictionary.h"
#include "kxcommonr/mtd/KXValueSet.h"
#include "kxcommonr/mtd/KXCategoryEncoder.h"
#include "kxcommonr/mtd/KXCatNumEncoder.h"
#include "kxcommonr/mtd/KXStringEncoder.h"
#include "kxcommonr/mtd/KXContEncoder.h"
#include "kxcommonr/mtd/KXBinningEncoder.h"
#include "kxcommonr/mtd/KXRoundEncoder.h"
#include "kxcommonr/mtd/KXCatVar.h"
#include "kxcommonr/mtd/KXContVar.h"
#include "kxcommonr/mtd/KXWeightVar.h"
#include "kxcommonr/mtd/KXCaseCounts.h"
#include "kxcommonr/mtd/KXContStats.h"
#include "kxcommonr/mtd/KXUniStats.h"
#include "kxcommonr/mtd/KXVarList.h"

#endif  // KXCOMMONR_KXCOMMONR_H

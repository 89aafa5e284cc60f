#pragma once

class QAbstractButton;

// A checkable button that shows plainly when it is on, in any palette: some schemes draw a
// pressed button almost as a raised one. While checked it wears the selection colours and a bold
// title; it is as wide plain as bold, so that a row of them does not shift as the choice moves.
void markWhenChecked(QAbstractButton* button);

#pragma once

namespace tavrelon::program {

/// Names the program and settles how its views are drawn. Before the application object is made.
void prepareViews();

}  // namespace tavrelon::program

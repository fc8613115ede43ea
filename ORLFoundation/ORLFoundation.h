/// Everything that the library offers, in one include.
#pragma once

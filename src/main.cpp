// zurt: started without arguments, asks for its file names on the console.
#include "job/driver.h"

int main() {
    zurt::JobDriver(stdin, stdout, zurt::kWorkingVectorSize);
}

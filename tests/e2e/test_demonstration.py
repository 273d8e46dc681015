"""What ./run shows without a display comes out well, in the language that is named."""
import sys

from run import demonstrate
from sandbox import Sandbox
from testbed import BUILD

language = sys.argv[1]
folder = BUILD / "tests/e2e" / f"demonstration-{language}"
with Sandbox(BUILD, folder, own_display=True, language=language).lay_out() as sandbox:
    sys.exit(demonstrate(sandbox, folder / "pictures"))

// Carries points from DHDN to ETRS89 in the two ways that the library offers.
//
//   Windows: csc Example.cs, lagestatus.dll beside it; a 64-bit process (-platform:x64)
//   Linux:   mcs Example.cs && LD_LIBRARY_PATH=... mono Example.exe data/sample
using System;
using System.Globalization;
using System.Runtime.InteropServices;
using System.Text;

static class Lagestatus
{
    const string Library = "lagestatus";

    // Sizes of the buffers: a StringBuilder of this capacity, arrays of this length.
    public const int NameSize = 100, EllipsoidSize = 11, KindSize = 14, ResultSize = 4, ParameterCount = 36;

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int test_dll(double a, double b, double c, [Out] double[] result);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode, ExactSpelling = true)]
    public static extern int trans_dll(double coord1, double coord2, double height, int sourceCode, int targetCode,
        string dataDir, [MarshalAs(UnmanagedType.LPStr)] string heightMode, [Out] double[] result,
        StringBuilder sourceName, [Out] int[] auxiliary, StringBuilder sourceEllipsoid, StringBuilder sourceKind,
        StringBuilder targetName, StringBuilder targetEllipsoid, StringBuilder targetKind);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode, ExactSpelling = true)]
    public static extern int transla_dll(string dataDir, string fileBase, int scrambled, int code,
        StringBuilder systemName, StringBuilder ellipsoidName, StringBuilder projectionKind,
        [Out] double[] parameters);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode, ExactSpelling = true)]
    public static extern int translz_dll(string dataDir, string fileBase, int scrambled, int code,
        StringBuilder systemName, StringBuilder ellipsoidName, StringBuilder projectionKind, out int zoneNumber,
        [Out] double[] parameters);

    // fileNames: new char[100 * NameSize]; the name of entry i begins at 100 i and ends with a zero.
    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode, ExactSpelling = true)]
    public static extern int translD_dll(string dataDir, out int scrambled, out int count, [Out] int[] codes,
        [Out] int[] auxiliary, [Out] char[] fileNames);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode, ExactSpelling = true)]
    public static extern int transr_dll(double[] point, string sourceKind, string targetKind, [Out] double[] result,
        string sourceEllipsoid, double[] sourceParameters, string targetEllipsoid, double[] targetParameters,
        int zoneNumber, int sourceHeightFlag, int targetHeightFlag, string dataDir);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode, ExactSpelling = true)]
    public static extern void transfm_dll(int code, string fileName, StringBuilder buffer);

    // What Windows-1252 has at 0x80 to 0x9F.
    const string From80 =
        "\u20ac\u0081\u201a\u0192\u201e\u2026\u2020\u2021\u02c6\u2030\u0160\u2039\u0152\u008d\u017d\u008f" +
        "\u0090\u2018\u2019\u201c\u201d\u2022\u2013\u2014\u02dc\u2122\u0161\u203a\u0153\u009d\u017e\u0178";

    // A path for the library, one byte a unit: in Windows-1252, elsewhere in UTF-8.
    public static string PathText(string path)
    {
        if (System.IO.Path.DirectorySeparatorChar == '/')
            return new string(Array.ConvertAll(Encoding.UTF8.GetBytes(path), unit => (char)unit));
        return new string(Array.ConvertAll(path.ToCharArray(),
            unit => From80.IndexOf(unit) < 0 ? unit : (char)(0x80 + From80.IndexOf(unit))));
    }

    public static string Message(int status, string fileName)
    {
        var buffer = new StringBuilder(129 + 91 + fileName.Length);
        transfm_dll(status, fileName, buffer);
        return buffer.ToString();
    }
}

static class Example
{
    static void Check(int status, string fileName)
    {
        if (status != 0)
            throw new ApplicationException("status " + status + ": " + Lagestatus.Message(status, fileName));
    }

    static void Print(string format, params object[] values)
    {
        Console.WriteLine(string.Format(CultureInfo.InvariantCulture, format, values));
    }

    static int Main(string[] arguments)
    {
        Console.OutputEncoding = new UTF8Encoding(false);
        string dir = Lagestatus.PathText(arguments.Length > 0 ? arguments[0] : ".");
        var name = new StringBuilder(Lagestatus.NameSize);
        var name2 = new StringBuilder(Lagestatus.NameSize);
        var ellipsoid = new StringBuilder(Lagestatus.EllipsoidSize);
        var ellipsoid2 = new StringBuilder(Lagestatus.EllipsoidSize);
        var kind = new StringBuilder(Lagestatus.KindSize);
        var kind2 = new StringBuilder(Lagestatus.KindSize);
        var result = new double[Lagestatus.ResultSize];
        var source = new double[Lagestatus.ParameterCount];
        var target = new double[Lagestatus.ParameterCount];
        var auxiliary = new int[2];
        int zone, scrambled, count;

        if (Lagestatus.test_dll(1.0, 2.0, 3.0, result) != 0 || result[3] != 3.0)
            throw new ApplicationException("the library is not bound as it should be");
        try
        {
            var codes = new int[100];
            var names = new char[100 * Lagestatus.NameSize];
            Check(Lagestatus.translD_dll(dir, out scrambled, out count, codes, new int[100], names), "DEFAULT");

            // One call that reads everything it needs.
            Check(Lagestatus.trans_dll(52.5, 13.4, 100.0, 101, 201, dir, "e", result, name, auxiliary, ellipsoid, kind,
                name2, ellipsoid2, kind2), dir);
            Print("{0} -> {1}: {2:F9} {3:F9} {4:F4}", name, name2, result[0], result[1], result[2]);

            // Many points between two systems: their descriptions are read once and kept.
            int entry = Array.IndexOf(codes, 101, 0, count);
            string file = new string(names, entry * Lagestatus.NameSize, Lagestatus.NameSize).Split('\0')[0];
            Check(Lagestatus.transla_dll(dir, file, scrambled, 101, name, ellipsoid, kind, source), file + ".tra");
            Check(Lagestatus.translz_dll(dir, "etrs89-geozentrisch", scrambled, 202, name2, ellipsoid2, kind2, out zone,
                target), "etrs89-geozentrisch.tra");
            var point = new double[] { 52.5, 13.4, 100.0 };
            for (int i = 0; i < 3; ++i)
            {
                Check(Lagestatus.transr_dll(point, kind.ToString(), kind2.ToString(), result, ellipsoid.ToString(),
                    source, ellipsoid2.ToString(), target, zone, 0, 0, dir), "hoehe.ini");
                Print("{0:F1} {1:F1} -> {2:F4} {3:F4} {4:F4}", point[0], point[1], result[0], result[1], result[2]);
                point[0] -= 1.0;
            }

            // What a failure looks like.
            Print("status 12: {0}", Lagestatus.Message(12, "mein-system.tra"));
        }
        catch (ApplicationException failure)
        {
            Console.Error.WriteLine(failure.Message);
            return 1;
        }
        return 0;
    }
}
